#include <QDateTime>

#include "data/clock.h"
#include "vatchange/rules/change_day.h"
#include "vatchange/rules/dependent_statements.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/rules/selection.h"
#include "vatchange/run/dependent_step.h"
#include "vatchange/run/product_filter.h"

// The four price tables beside the products. Recurring invoices and quantity discounts are updated
// by their unique numbers; customer prices and campaigns by columns that several rows may share.

namespace vatchange {

namespace {

using Kind = RowColumn::Kind;
using Row = data::KeyValues;
using Changes = std::vector<AmountChange>;

/// Accepts rows by the product number in a column.
auto ofProductIn(size_t column) {
    return [column](RunContext& run) {
        const auto products = std::make_shared<ProductFilter>(run);
        return [products, column](const Row& row) {
            return products->accepts(row[column].toString());
        };
    };
}

AmountChange salesChange(const RunContext& run, double old) {
    return {old, run.prices.dependentPrice(old)};
}

AmountChange purchaseChange(const RunContext& run, double old) {
    return {old, run.prices.dependentPurchasePrice(old)};
}

}  // namespace

DependentStep customerPriceStep(const RunContext& run) {
    DependentStep step;
    step.table.name = QStringLiteral("ASALE");
    step.table.keyColumns = {QStringLiteral("AsiakasNumero"), QStringLiteral("Tuote"),
                             QStringLiteral("AsikasTyyppi"), QStringLiteral("Maara")};
    step.table.amountColumns = {QStringLiteral("Hinta"), QStringLiteral("HintaAlv0"),
                                QStringLiteral("OstoHinta")};
    step.table.selected = [](const data::TtbTable& record) {
        return record.fieldByName(QStringLiteral("Tyyppi")).asInteger() == 1 &&
               record.fieldByName(QStringLiteral("Prosentteina")).asInteger() == 0 &&
               record.fieldByName(QStringLiteral("Hinta")).asFloat() > 0 &&
               record.fieldByName(QStringLiteral("OstohintaLahtoinen")).asInteger() == 0;
    };
    step.rows = {QStringLiteral("ASALE"),
                 customerPriceQuery(run.condition, run.definition),
                 {{QStringLiteral("AsiakasNumero"), Kind::Whole},
                  {QStringLiteral("tuote"), Kind::Text},
                  {QStringLiteral("AsikasTyyppi"), Kind::Whole},
                  {QStringLiteral("maara"), Kind::Amount},
                  {QStringLiteral("hinta"), Kind::Amount},
                  {QStringLiteral("hintaalv0"), Kind::Amount},
                  {QStringLiteral("OstoHinta"), Kind::Amount}},
                 1,
                 customerPriceQuery(selectionWithConverted(run.definition), run.definition),
                 ofProductIn(1)};
    step.update = kCustomerPriceUpdate;
    step.keyParameters = {QStringLiteral("asiakasNumero"), QStringLiteral("tuote"),
                          QStringLiteral("Asiakastyyppi"), QStringLiteral("maara")};
    step.amountParameters = {QStringLiteral("uusihinta"), QStringLiteral("uusihintaalv0"),
                             QStringLiteral("uusiostohinta")};
    step.sharesKeys = true;
    step.productValue = 1;
    step.begin = QStringLiteral("Aloitetaan asiakashinnastojen päivitys");
    step.status = QStringLiteral("Päivitetään asiakashinnasto");
    step.what = QStringLiteral("Asiakashinnastojen rivit");
    step.lost = QStringLiteral("Virhe asiakashinnaston päivityksessä: ");
    step.logsRows = false;
    step.logsCount = true;
    step.convert = [&run](const Amounts& old) {
        const AmountChange price = salesChange(run, old[0]);
        AmountChange priceVat0{old[1], old[1]};
        if (!run.definition.keepCustomerPricelistVat0)
            priceVat0.after = price.after / run.targetFactor;
        return Changes{price, priceVat0, purchaseChange(run, old[2])};
    };
    step.line = [](const Row& row, const Changes& changes) {
        return customerPriceLine(static_cast<int>(row[2].toLongLong()), row[0].toLongLong(),
                                 row[1].toString(), row[3].toDouble(), changes[0], changes[1],
                                 changes[2]);
    };
    return step;
}

DependentStep campaignStep(const RunContext& run) {
    DependentStep step;
    step.table.name = QStringLiteral("KAMPPANJA");
    step.table.keyColumns = {QStringLiteral("Tuote"), QStringLiteral("RiviNro")};
    step.table.amountColumns = {QStringLiteral("Myyntihinta"), QStringLiteral("Ostohinta")};
    const QDate endingFrom = campaignsEndingFrom(run.definition);
    step.table.selected = [endingFrom](const data::TtbTable& record) {
        const QDate end = record.fieldByName(QStringLiteral("Loppu")).asDate();
        return record.fieldByName(QStringLiteral("Prosentti")).asInteger() == 0 &&
               (!end.isValid() || end >= endingFrom);
    };
    step.rows = {QStringLiteral("KAMPPANJA"),
                 campaignQuery(run.condition, run.definition),
                 {{QStringLiteral("Tuote"), Kind::Text},
                  {QStringLiteral("Rivinro"), Kind::Whole},
                  {QStringLiteral("MyyntiHinta"), Kind::Amount},
                  {QStringLiteral("OstoHInta"), Kind::Amount}},
                 0,
                 campaignQuery(selectionWithConverted(run.definition), run.definition),
                 ofProductIn(0)};
    step.update = kCampaignUpdate;
    step.keyParameters = {QStringLiteral("tuote"), QStringLiteral("rivi")};
    step.amountParameters = {QStringLiteral("uusihinta"), QStringLiteral("ostohinta")};
    step.sharesKeys = true;
    step.begin = QStringLiteral("Aloitetaan kampanjoiden päivitys");
    step.status = QStringLiteral("Päivitetään kampanjat");
    step.header = kCampaignHeader;
    step.what = QStringLiteral("Kampanjarivit");
    step.lost = QStringLiteral("Virhe kampanjan päivityksessä: ");
    step.convert = [&run](const Amounts& old) {
        return Changes{salesChange(run, old[0]), purchaseChange(run, old[1])};
    };
    step.line = [](const Row& row, const Changes& changes) {
        return campaignLine(row[0].toString(), row[1].toLongLong(), changes[0], changes[1]);
    };
    return step;
}

DependentStep recurringInvoiceStep(const RunContext& run) {
    DependentStep step;
    step.table.name = QStringLiteral("VAKIOLASKUTUS");
    step.table.keyColumns = {QStringLiteral("Id")};
    step.table.amountColumns = {QStringLiteral("ahinta"), QStringLiteral("Yhteensa"),
                                QStringLiteral("ostohinta")};
    step.table.stamp = [](data::TtbTable& record) {
        const QDateTime now = data::Clock::now();
        record.fieldByName(QStringLiteral("MuutosPvm")).setDate(now.date());
        record.fieldByName(QStringLiteral("MuutosAika")).setValue(now.time());
    };
    step.rows = {QStringLiteral("VAKIOLASKUTUS"),
                 recurringInvoiceQuery(run.condition),
                 {{QStringLiteral("id"), Kind::Whole},
                  {QStringLiteral("ahinta"), Kind::Amount},
                  {QStringLiteral("yhteensa"), Kind::Amount},
                  {QStringLiteral("ostohinta"), Kind::Amount},
                  {QStringLiteral("asiakas"), Kind::Whole},
                  {QStringLiteral("tuote"), Kind::Text}},
                 5,
                 recurringInvoiceQuery(selectionWithConverted(run.definition)),
                 ofProductIn(5)};
    step.update = kRecurringInvoiceUpdate;
    step.keyParameters = {QStringLiteral("id")};
    step.amountParameters = {QStringLiteral("uusihinta"), QStringLiteral("uusiyhteensa"),
                             QStringLiteral("uusiostohinta")};
    step.productValue = 5;
    step.begin = QStringLiteral("Aloitetaan vakiolaskutusten päivitys");
    step.header = kRecurringInvoiceHeader;
    step.what = QStringLiteral("Toistuvaislaskutuksen rivit");
    step.lost = QStringLiteral("Virhe vakiolaskutuksen päivityksessä: ");
    step.rowStatus = [](const Row& row) {
        return QStringLiteral("Vakiolaskutus asiakas ") + QString::number(row[4].toLongLong());
    };
    step.convert = [&run](const Amounts& old) {
        return Changes{salesChange(run, old[0]), salesChange(run, old[1]),
                       purchaseChange(run, old[2])};
    };
    step.line = [](const Row& row, const Changes& changes) {
        return recurringInvoiceLine(row[4].toLongLong(), row[5].toString(), changes[0], changes[1],
                                    changes[2]);
    };
    return step;
}

DependentStep quantityDiscountStep(const RunContext& run) {
    DependentStep step;
    step.table.name = QStringLiteral("MAARAALE");
    step.table.keyColumns = {QStringLiteral("Numero")};
    step.table.amountColumns = {QStringLiteral("Arvo"), QStringLiteral("Ostohinta")};
    step.rows = {QStringLiteral("MAARAALE"),
                 quantityDiscountQuery(run.condition, run.definition),
                 {{QStringLiteral("numero"), Kind::Whole},
                  {QStringLiteral("arvo"), Kind::Amount},
                  {QStringLiteral("ostohinta"), Kind::Amount},
                  {QStringLiteral("nimi"), Kind::Text}},
                 std::nullopt,
                 quantityDiscountQuery(selectionWithConverted(run.definition), run.definition),
                 [](RunContext& context) {
                     const auto discounts =
                         std::make_shared<data::IdSet>(ProductFilter(context).quantityDiscounts());
                     return [discounts](const Row& row) {
                         return discounts->contains(row[0].toLongLong());
                     };
                 }};
    step.update = kQuantityDiscountUpdate;
    step.keyParameters = {QStringLiteral("numero")};
    step.amountParameters = {QStringLiteral("uusiarvo"), QStringLiteral("ostohinta")};
    step.productColumn = QStringLiteral("maaraale");
    step.begin = QStringLiteral("Aloitetaan määräalejen päivitys");
    step.status = QStringLiteral("Päivitetään määräalet");
    step.what = QStringLiteral("Määräalennukset");
    step.lost = QStringLiteral("Virhe määräalen päivityksessä: ");
    step.changed = [&run](const Row& row) {
        if (run.limited.quantityDiscounts.count(row[0].toLongLong()) > 0)
            run.ports.log(QStringLiteral("Huomaa: määräalennus %1 muutettiin, vaikka turvaraja "
                                         "ohitti sen tuotteita")
                              .arg(row[0].toLongLong()));
    };
    step.convert = [&run](const Amounts& old) {
        return Changes{salesChange(run, old[0]), purchaseChange(run, old[1])};
    };
    step.line = [](const Row& row, const Changes& changes) {
        return quantityDiscountLine(row[3].toString(), row[0].toLongLong(), changes[0], changes[1]);
    };
    return step;
}

StepRows storePriceRows(const RunContext& run) {
    return {QStringLiteral("MYYMALAHINNAT"),
            storePriceQuery({run.definition.sourceClass}),
            {{QStringLiteral("myymala"), Kind::Whole}, {QStringLiteral("tuote"), Kind::Text}},
            1,
            storePriceQuery({run.definition.sourceClass, run.definition.targetClass}),
            ofProductIn(1)};
}

std::vector<DependentStep> dependentSteps(const RunContext& run) {
    const ChangeDefinition& definition = run.definition;
    std::vector<DependentStep> steps;
    if (definition.customerPriceLists)
        steps.push_back(customerPriceStep(run));
    if (definition.campaigns)
        steps.push_back(campaignStep(run));
    if (definition.recurringInvoicing)
        steps.push_back(recurringInvoiceStep(run));
    if (definition.quantityDiscounts)
        steps.push_back(quantityDiscountStep(run));
    return steps;
}

}  // namespace vatchange
