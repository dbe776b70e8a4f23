#include <QScopeGuard>
#include <array>
#include <memory>

#include "data/clock.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/run/product_record.h"
#include "vatchange/run/run_context.h"
#include "vatchange/run/safety_limits.h"
#include "vatchange/run/webshop_marks.h"

namespace vatchange {

namespace {

/// A prepared UPDATE of a product with its parameters.
class PreparedUpdate {
  public:
    PreparedUpdate(data::Database& database, const QString& text, const PriceRules& rules)
        : m_query(&database) {
        m_query.sql().add(text);
        for (int level = 1; level <= kPriceLevels; ++level) {
            const auto index = static_cast<size_t>(level - 1);
            if (rules.sources()[index] > 0)
                m_levels[index] = &m_query.paramByName(levelParameter(level));
        }
        m_averagePurchase = m_query.findParam(QStringLiteral("OSTOHINTA"));
        m_portion = m_query.findParam(QStringLiteral("ANNOSHINTA"));
        m_lastPurchase = m_query.findParam(QStringLiteral("VIIMOSTOHINTA"));
        m_number = &m_query.paramByName(QStringLiteral("TUOTENRO"));
    }

    void run(const QString& number, const ProductPrices& prices) {
        for (size_t i = 0; i < m_levels.size(); ++i)
            set(m_levels[i], prices.levels[i]);
        set(m_averagePurchase, prices.averagePurchase);
        set(m_portion, prices.portion);
        set(m_lastPurchase, prices.lastPurchase);
        m_number->setString(number);
        m_query.execSql();
    }

  private:
    static void set(data::TParam* parameter, double value) {
        if (parameter)
            parameter->setFloat(value);
    }

    data::TUniQuery m_query;
    std::array<data::TParam*, kPriceLevels> m_levels{};
    data::TParam* m_averagePurchase;
    data::TParam* m_portion;
    data::TParam* m_lastPurchase;
    data::TParam* m_number;
};

/// The prepared UPDATEs of a run, at most eight: the texts differ only by the class fields to
/// change, and by date after midnight.
class ProductUpdates {
  public:
    explicit ProductUpdates(RunContext& run) : m_run(run) {}

    PreparedUpdate& of(const ClassFields& classes) {
        const QDate today = data::Clock::today();
        if (today != m_day) {
            m_updates = {};
            m_day = today;
        }
        auto& update = m_updates[(classes.sales ? 1U : 0U) + (classes.second ? 2U : 0U) +
                                 (classes.purchase ? 4U : 0U)];
        if (!update) {
            update = std::make_unique<PreparedUpdate>(
                m_run.database, productUpdate(m_run.definition, classes, today), m_run.prices);
        }
        return *update;
    }

  private:
    RunContext& m_run;
    QDate m_day;
    std::array<std::unique_ptr<PreparedUpdate>, 8> m_updates;
};

/// Releases the record lock at scope exit.
class LockRelease {
  public:
    explicit LockRelease(ProductRecords& records) : m_records(records) {}
    ~LockRelease() { m_records.release(); }
    LockRelease(const LockRelease&) = delete;
    LockRelease& operator=(const LockRelease&) = delete;

  private:
    ProductRecords& m_records;
};

/// The products step of one run.
class ProductConversion {
  public:
    ProductConversion(RunContext& run, LabelTable labels)
        : m_run(run),
          m_records(run.database, run.definition.sourceClass),
          m_updates(run),
          m_labels(run.database, run.ports, labels),
          m_marks(run.database, run.ports) {}

    /// Writes the labels and web shop marks that products converted earlier in this run lack.
    /// Returns false if the step must end.
    bool completeEarlier() {
        if (!m_run.progress)
            return true;
        bool continues = true;
        const auto complete = [&](const auto& doRest) {
            return [this, &continues, doRest](data::RecordId id) {
                LockedProduct product;
                const QString number = m_records.read(id, product);
                if (continues && !number.isEmpty()) {
                    m_run.setOrigin(id);
                    continues = doRest(number, product);
                }
            };
        };
        m_run.progress->unmarked.visit(complete([this](const auto& number, const auto& product) {
            markForWebShop(number, product);
            return true;
        }));
        m_run.progress->unlabelled.visit(complete([this](const auto& number, const auto& product) {
            return writeLabels(number, product);
        }));
        return continues;
    }

    /// Returns false if the step must end.
    bool convert(const QString& number) {
        if (m_run.limited.numbers.contains(number))
            return true;
        m_run.ports.status(QStringLiteral("Tuote ") + number);
        LockedProduct product;
        ProductPrices converted;
        switch (update(number, ProductRecords::kLockWait, product, converted)) {
            case Outcome::NothingToDo:
                return true;
            case Outcome::Held:
                m_run.skipProduct(number);
                m_passedOver += number;
                return true;
            case Outcome::Converted:
                break;
        }
        return complete(number, product, converted);
    }

    /// Tries the products once more that another program held. Returns false if the step must end.
    bool convertPassedOver() {
        for (const QString& number : std::as_const(m_passedOver)) {
            if (m_run.stopRequested())
                return false;
            LockedProduct product;
            ProductPrices converted;
            const Outcome outcome =
                update(number, std::chrono::milliseconds(0), product, converted);
            if (outcome == Outcome::Held)
                continue;
            --m_run.result.skippedProducts;
            m_run.result.skippedNumbers.removeOne(number);
            if (outcome == Outcome::NothingToDo)
                continue;
            m_run.ports.log(QStringLiteral("Huomaa: tuote ") + number +
                            QStringLiteral(" muutettiin uudella yrityksellä"));
            if (!complete(number, product, converted))
                return false;
        }
        return true;
    }

    /// Adds label and mark failures and counts to the result.
    void finish() {
        for (const QString& failure : {m_labels.failure(), m_marks.failure()}) {
            if (!failure.isEmpty())
                m_run.result.failures += failure;
        }
        if (!m_labels.failure().isEmpty() || !m_marks.failure().isEmpty())
            ++m_run.result.failedSteps;
        if (m_labels.written() > 0)
            m_run.changedRows(QStringLiteral("Hyllynreunaetiketit")) += m_labels.written();
        if (m_marks.written() > 0)
            m_run.changedRows(QStringLiteral("Verkkokaupan muutosmerkinnät")) += m_marks.written();
    }

  private:
    enum class Outcome { Converted, Held, NothingToDo };

    Outcome update(const QString& number, std::chrono::milliseconds wait, LockedProduct& product,
                   ProductPrices& converted) {
        if (m_run.database.joinsReadAndStatement()) {
            Outcome outcome = Outcome::Held;
            const LockRelease release(m_records);  // after the commit
            m_run.database.inTransaction([&] {     // where nothing may wait
                outcome = lockAndUpdate(number, std::chrono::milliseconds(0), product, converted);
            });
            if (outcome != Outcome::Held)
                return outcome;
        }
        const LockRelease release(m_records);
        return lockAndUpdate(number, wait, product, converted);
    }

    Outcome lockAndUpdate(const QString& number, std::chrono::milliseconds wait,
                          LockedProduct& product, ProductPrices& converted) {
        switch (m_records.lock(number, product, wait)) {
            case ProductRecords::Outcome::Gone:
                return Outcome::NothingToDo;
            case ProductRecords::Outcome::HeldByOther:
                return Outcome::Held;
            case ProductRecords::Outcome::Locked:
                break;
        }
        if (!product.classes.any())
            return Outcome::NothingToDo;
        converted = m_run.prices.convert(product.prices);
        if (passesOver(m_run, number, product.prices, converted))
            return Outcome::NothingToDo;
        m_run.setOrigin(product.id);
        PreparedUpdate& change = m_updates.of(product.classes);
        if (m_run.database.statementsPassRecordLocks()) {
            change.run(number, converted);
            return Outcome::Converted;
        }
        m_records.release();
        try {
            change.run(number, converted);
            return Outcome::Converted;
        } catch (const data::DataError& error) {
            if (error.kind() != data::ErrorKind::Locked)
                throw;
        }
        // another program locked the record after its release for the statement
        return Outcome::Held;
    }

    /// What follows the update of a product. Returns false if the step must end.
    bool complete(const QString& number, const LockedProduct& product,
                  const ProductPrices& converted) {
        // the product counts as changed even if its label fails
        ++m_run.result.products;
        if (m_run.definition.productLog)
            m_run.ports.log(productLine(number, m_run.prices, product.prices, converted));
        markForWebShop(number, product);
        return writeLabels(number, product);
    }

    void markForWebShop(const QString& number, const LockedProduct& product) {
        if (!m_run.definition.leaveWebShop && product.inWebShop && !m_marks.mark(number, u'M'))
            m_run.mark(unmarkedText(product.id));
    }

    bool writeLabels(const QString& number, const LockedProduct& product) {
        if (product.labels <= 0)
            return true;
        const ShelfLabels::Outcome outcome = m_labels.write(number, product.labels);
        if (outcome == ShelfLabels::Outcome::Done)
            return true;
        m_run.mark(unlabelledText(product.id));
        if (outcome == ShelfLabels::Outcome::Failed)
            return true;
        m_run.leftBehind = true;
        m_run.outcome.failedTables.insert(QStringLiteral("TUOTE"));
        if (!m_run.ports.unattended())  // the user was asked
            m_run.stop(QStringLiteral("hyllynreunaetiketin virheen jälkeen"));
        return false;
    }

    RunContext& m_run;
    ProductRecords m_records;
    ProductUpdates m_updates;
    ShelfLabels m_labels;
    WebShopMarks m_marks;
    QStringList m_passedOver;
};

}  // namespace

void convertProducts(RunContext& run, LabelTable labels) {
    run.ports.stepStatus(QStringLiteral("Päivitetään tuotteet"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(productQuery(run.condition));
    rows.open();
    const auto& number = rows.fieldByName(QStringLiteral("NUMERO"));
    ProductConversion conversion(run, labels);
    run.mark(run.definition.writeShelfLabels && labels == LabelTable::NotWritten
                 ? kProductsStepWithoutLabels
                 : kProductsStep);
    const auto counts = qScopeGuard([&run, &conversion] {
        run.setOrigin(0);
        conversion.finish();
    });
    bool continues = conversion.completeEarlier();
    const qint64 total = rows.recordCount();
    qint64 visited = 0;
    for (; continues && !rows.eof() && !run.stopRequested(); rows.next()) {
        continues = conversion.convert(number.asString());
        if (continues)
            run.ports.progress(++visited, total);
    }
    if (continues && !run.result.cancelled)
        conversion.convertPassedOver();
    run.mark(kProductsEnd);
    run.database.flush();
    if (!run.result.cancelled) {
        run.ports.stepFinished(QStringLiteral("Tuotetiedot muutettu ( ") +
                               QString::number(run.result.products) + QStringLiteral(" kpl)"));
    }
}

}  // namespace vatchange
