#include <QScopeGuard>

#include "data/clock.h"
#include "data/record/record_codec.h"
#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/statements.h"
#include "vatchange/run/run_context.h"
#include "vatchange/run/webshop_marks.h"

namespace vatchange {

namespace {

/// The record ids of products, which tell in the journal what belongs to which product.
class ProductIds {
  public:
    explicit ProductIds(RunContext& run)
        : m_file(run.journal ? run.database.openTable(QStringLiteral("TUOTE")) : nullptr) {}

    /// 0 if there is no journal or no such product.
    data::RecordId idOf(const QString& number) const {
        if (!m_file)
            return 0;
        const auto found = m_file->seek(0, data::SeekOp::Equal, {number}, 1);
        return found.empty() ? 0 : found.front().id;
    }

    /// The number of a product that is not in the web shop; empty if it is there or gone.
    QString takenOff(data::RecordId id) const {
        const auto record = m_file->get(id);
        if (!record || value(*record, "VERKKOKAUPPA").toLongLong() != 0)
            return {};
        return value(*record, "NUMERO").toString();
    }

  private:
    data::Value value(const data::StoredRecord& record, const char* field) const {
        const data::RecordLayout& layout = m_file->layout();
        return data::readValue(layout.field(layout.indexOf(QLatin1String(field))),
                               reinterpret_cast<const uchar*>(record.bytes.constData()));
    }

    std::unique_ptr<data::TableFile> m_file;
};

}  // namespace

void checkProductCodes(RunContext& run) {
    run.ports.log(
        QStringLiteral("Aloitetaan Verkkokauppa -valinnan poisto verkkokauppatuotteilta, joiden "
                       "tuotekoodit sisältävät kiellettyjä merkkejä"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(kWebShopProductsQuery);
    rows.open();
    const auto& number = rows.fieldByName(QStringLiteral("numero"));
    const auto& name = rows.fieldByName(QStringLiteral("nimi"));
    WebShopMarks marks(run.database, run.ports);
    const auto counts = qScopeGuard([&run, &marks] {
        run.setOrigin(0);
        if (!marks.failure().isEmpty()) {
            ++run.result.failedSteps;
            run.result.failures += marks.failure();
        }
        if (marks.written() > 0)
            run.changedRows(QStringLiteral("Verkkokaupan muutosmerkinnät")) += marks.written();
    });
    data::TUniQuery update(&run.database);
    qint64& removed = run.changedRows(QStringLiteral("Verkkokaupasta poistetut tuotteet"));

    const ProductIds products(run);
    const auto mark = [&](const QString& code, data::RecordId id) {
        if (!run.definition.leaveWebShop && !marks.mark(code, u'P'))
            run.mark(unmarkedText(id));
    };
    run.mark(kCodesStep);
    if (run.progress) {
        run.progress->unmarkedCodes.visit([&](data::RecordId id) {
            run.setOrigin(id);
            if (const QString code = products.takenOff(id); !code.isEmpty())
                mark(code, id);
        });
    }
    /// Returns false if another program holds the product's record.
    const auto takeOff = [&](const QString& code) {
        update.sql().setText(leaveWebShopUpdate(data::Clock::today()));
        update.paramByName(QStringLiteral("numero")).setString(code);
        try {
            update.execSql();
            return true;
        } catch (const data::DataError& error) {
            if (error.kind() != data::ErrorKind::Locked)
                throw;
        }
        run.skipProduct(code);
        return false;
    };
    run.walk(rows, [&] {
        const QString code = number.asString();
        if (!isForbiddenProductCode(code))
            return;
        const data::RecordId id = products.idOf(code);
        run.setOrigin(id);
        if (!takeOff(code))
            return;
        if (run.definition.productLog)
            run.ports.log(code + u';' + name.asString());
        mark(code, id);
        ++removed;
    });
    run.mark(kCodesEnd);
    run.database.flush();
    run.ports.log(QStringLiteral("Verkkokauppa -valinta poistettiin ") + QString::number(removed) +
                  QStringLiteral(" tuotteelta"));
}

}  // namespace vatchange
