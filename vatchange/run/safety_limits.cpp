#include "vatchange/run/safety_limits.h"

#include "vatchange/rules/log_texts.h"
#include "vatchange/rules/price_limit.h"
#include "vatchange/run/company_findings.h"

namespace vatchange {

namespace {

constexpr qint64 kEventInterval = 1000;  ///< products

bool judges(const ChangeDefinition& definition) {
    return definition.products && definition.mostPercent;
}

void count(RunContext& run, const QString& number) {
    ++run.result.limitedProducts;
    run.outcome.overLimit.insert(number);
    if (run.result.limitedNumbers.size() < RunResult::kListedProducts)
        run.result.limitedNumbers += number;
}

/// Logs a product with the prices of its levels that have a source.
void tell(RunContext& run, const QString& number, const ProductPrices& before,
          const ProductPrices& after) {
    run.ports.log(QStringLiteral("Huomaa: ") +
                  limitedProductText(number, run.definition, run.prices, before, after));
}

LimitedProduct limited(const RunContext& run, const QString& number, qint64 quantityDiscount,
                       const ProductPrices& before, const ProductPrices& after) {
    LimitedProduct product{number, quantityDiscount, {}};
    for (int level = 1; level <= kPriceLevels; ++level) {
        const auto index = static_cast<size_t>(level - 1);
        if (run.prices.sources()[index] > 0)
            product.prices.push_back({level, before.levels[index], after.levels[index]});
    }
    return product;
}

std::vector<LimitedProduct> judgeNow(RunContext& run) {
    std::vector<LimitedProduct> products;
    run.ports.stepStatus(QStringLiteral("Tarkastetaan turvaraja"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(limitQuery(run.condition));
    rows.open();
    const auto& number = rows.fieldByName(QStringLiteral("NUMERO"));
    const auto& discount = rows.fieldByName(QStringLiteral("MAARAALE"));
    std::array<const data::TQueryField*, kPriceLevels> levels{};
    for (size_t i = 0; i < levels.size(); ++i)
        levels[i] = &rows.fieldByName(kPriceColumns[i + 1]);
    const qint64 total = rows.recordCount();
    for (qint64 visited = 1; !rows.eof(); rows.next(), ++visited) {
        ProductPrices before;
        for (size_t i = 0; i < levels.size(); ++i)
            before.levels[i] = levels[i]->asFloat();
        const ProductPrices after = run.prices.convert(before);
        if (exceedsPercentLimit(run.definition, before, after)) {
            products.push_back(
                limited(run, number.asString(), discount.asInteger(), before, after));
            tell(run, products.back().number, before, after);
        }
        if (visited % kEventInterval == 0) {
            run.ports.progress(visited, total);
            run.ports.processEvents();
        }
    }
    return products;
}

void take(RunContext& run, const LimitedProduct& product) {
    run.limited.numbers.insert(product.number);
    if (product.quantityDiscount != 0)
        run.limited.quantityDiscounts.insert(product.quantityDiscount);
    count(run, product.number);
}

}  // namespace

bool productCountAllowsRun(RunContext& run, const RunOptions& options) {
    const std::optional<qint64> most = run.definition.mostProducts;
    if (!most || options.resume != 0)
        return true;
    QString& refusal = run.result.refusal;
    try {
        const qint64 selected = selectedProducts(run.database, run.definition);
        if (selected <= *most)
            return true;
        const DefinitionProblem problem{
            kMostProductsControl, QString::number(*most),
            QStringLiteral("rajaukset valitsevat %1 tuotetta").arg(selected)};
        refusal = QStringLiteral("Määrittelyä ei ajeta: ") + problem.text();
    } catch (const std::exception& error) {
        refusal = QStringLiteral("Virhe tuotteiden laskennassa: ") + errorText(error);
    }
    run.ports.NaytaViesti(refusal);
    return false;
}

void judgeProducts(RunContext& run) {
    if (!judges(run.definition))
        return;
    if (run.journal && hasLimitedProducts(*run.journal, run.result.run)) {
        visitLimitedProducts(*run.journal, run.result.run,
                             [&run](const LimitedProduct& product) { take(run, product); });
        if (run.result.limitedProducts > 0)
            run.ports.log(QStringLiteral("Huomaa: turvarajan vuoksi ohitetaan samat %1 tuotetta "
                                         "kuin ajon alkaessa")
                              .arg(run.result.limitedProducts));
        return;
    }
    const std::vector<LimitedProduct> products = judgeNow(run);
    for (const LimitedProduct& product : products)
        take(run, product);
    if (run.journal)
        storeLimitedProducts(*run.journal, run.result.run, products);
}

bool passesOver(RunContext& run, const QString& number, const ProductPrices& before,
                const ProductPrices& after) {
    if (!judges(run.definition) || !exceedsPercentLimit(run.definition, before, after))
        return false;
    tell(run, number, before, after);
    count(run, number);
    run.outcome.limitedUnderLock = true;
    return true;
}

}  // namespace vatchange
