#include <QScopeGuard>

#include "data/clock.h"
#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/statements.h"
#include "vatchange/run/run_context.h"
#include "vatchange/run/webshop_marks.h"

namespace vatchange {

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
        if (!marks.failure().isEmpty()) {
            ++run.result.failedSteps;
            run.result.failures += marks.failure();
        }
        if (marks.written() > 0)
            run.changedRows(QStringLiteral("Verkkokaupan muutosmerkinnät")) += marks.written();
    });
    data::TUniQuery update(&run.database);
    qint64& removed = run.changedRows(QStringLiteral("Verkkokaupasta poistetut tuotteet"));

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
        if (!isForbiddenProductCode(code) || !takeOff(code))
            return;
        if (run.definition.productLog)
            run.ports.log(code + u';' + name.asString());
        if (!run.definition.leaveWebShop)
            marks.mark(code, u'P');
        ++removed;
    });
    run.ports.log(QStringLiteral("Verkkokauppa -valinta poistettiin ") + QString::number(removed) +
                  QStringLiteral(" tuotteelta"));
}

}  // namespace vatchange
