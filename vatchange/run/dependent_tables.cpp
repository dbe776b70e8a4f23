#include "vatchange/rules/dependent_statements.h"

#include "vatchange/rules/log_texts.h"
#include "vatchange/run/run_context.h"
#include "vatchange/run/shared_key_rows.h"

// The four price tables beside the products. Each step reads its rows once, then writes them back
// one by one with the values computed from what was read. Recurring invoices and quantity discounts
// are updated by their unique numbers; customer prices and campaigns by columns that several rows
// may share.

namespace vatchange {

namespace {

SharedKeyTable customerPriceTable() {
    return {QStringLiteral("ASALE"),
            {QStringLiteral("AsiakasNumero"), QStringLiteral("Tuote"),
             QStringLiteral("AsikasTyyppi"), QStringLiteral("Maara")},
            {QStringLiteral("Hinta"), QStringLiteral("HintaAlv0"), QStringLiteral("OstoHinta")},
            [](const data::TtbTable& record) {
                return record.fieldByName(QStringLiteral("Tyyppi")).asInteger() == 1 &&
                       record.fieldByName(QStringLiteral("Prosentteina")).asInteger() == 0 &&
                       record.fieldByName(QStringLiteral("Hinta")).asFloat() > 0 &&
                       record.fieldByName(QStringLiteral("OstohintaLahtoinen")).asInteger() == 0;
            }};
}

SharedKeyTable campaignTable() {
    return {QStringLiteral("KAMPPANJA"),
            {QStringLiteral("Tuote"), QStringLiteral("RiviNro")},
            {QStringLiteral("Myyntihinta"), QStringLiteral("Ostohinta")},
            [](const data::TtbTable& record) {
                const QDate end = record.fieldByName(QStringLiteral("Loppu")).asDate();
                return record.fieldByName(QStringLiteral("Prosentti")).asInteger() == 0 &&
                       (!end.isValid() || end >= kCampaignsEndingFrom);
            }};
}

/// Reports rows changed by another program since the query: logs each, counts one failed step.
class LostRows {
  public:
    LostRows(RunContext& run, const QString& step) : m_run(run), m_step(step) {}

    void add(const QString& row) {
        const QString text = m_step + row +
                             QStringLiteral(
                                 ": riviä ei muutettu, koska muu ohjelma on muuttanut tai "
                                 "poistanut sen ajon aikana");
        m_run.ports.log(text);
        if (m_reported)
            return;
        m_reported = true;
        ++m_run.result.failedSteps;
        m_run.result.failures += text;
    }

  private:
    RunContext& m_run;
    const QString m_step;
    bool m_reported = false;
};

}  // namespace

void convertCustomerPriceLists(RunContext& run) {
    run.ports.log(QStringLiteral("Aloitetaan asiakashinnastojen päivitys"));
    run.ports.status(QStringLiteral("Päivitetään asiakashinnasto"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(customerPriceQuery(run.condition, run.definition));
    rows.open();
    const auto& customer = rows.fieldByName(QStringLiteral("AsiakasNumero"));
    const auto& product = rows.fieldByName(QStringLiteral("tuote"));
    const auto& oldPrice = rows.fieldByName(QStringLiteral("hinta"));
    const auto& oldPriceVat0 = rows.fieldByName(QStringLiteral("hintaalv0"));
    const auto& quantity = rows.fieldByName(QStringLiteral("maara"));
    const auto& customerType = rows.fieldByName(QStringLiteral("AsikasTyyppi"));
    const auto& oldPurchase = rows.fieldByName(QStringLiteral("OstoHinta"));

    data::TUniQuery update(&run.database);
    update.sql().add(kCustomerPriceUpdate);
    SharedKeyRows shared(run.database, customerPriceTable(), run.condition, rows);
    LostRows lost(run, QStringLiteral("Virhe asiakashinnaston päivityksessä: "));
    qint64& converted = run.changedRows(QStringLiteral("Asiakashinnastojen rivit"));
    const auto convertRow = [&] {
        const AmountChange price{oldPrice.asFloat(), run.prices.dependentPrice(oldPrice.asFloat())};
        AmountChange priceVat0{oldPriceVat0.asFloat(), oldPriceVat0.asFloat()};
        if (!run.definition.keepCustomerPricelistVat0)
            priceVat0.after = price.after / run.targetFactor;
        const AmountChange purchase{oldPurchase.asFloat(),
                                    run.prices.dependentPurchasePrice(oldPurchase.asFloat())};
        const auto line = [&] {
            return customerPriceLine(static_cast<int>(customerType.asInteger()),
                                     customer.asInteger(), product.asString(), quantity.asFloat(),
                                     price, priceVat0, purchase);
        };
        if (!shared.holdsCurrentRow()) {
            update.paramByName(QStringLiteral("uusihinta")).setFloat(price.after);
            update.paramByName(QStringLiteral("uusihintaalv0")).setFloat(priceVat0.after);
            update.paramByName(QStringLiteral("uusiostohinta")).setFloat(purchase.after);
            update.paramByName(QStringLiteral("tuote")).setString(product.asString());
            update.paramByName(QStringLiteral("asiakasNumero")).setInteger(customer.asInteger());
            update.paramByName(QStringLiteral("maara")).setFloat(quantity.asFloat());
            update.paramByName(QStringLiteral("Asiakastyyppi"))
                .setInteger(customerType.asInteger());
            update.execSql();
        } else if (!shared.update({price, priceVat0, purchase})) {
            lost.add(line());
            return;
        }
        ++converted;
        if (run.definition.productLog)
            run.ports.log(line());
    };
    run.walk(rows, convertRow);
    if (run.definition.productLog)
        run.ports.log(rowCountLine(converted));
}

void convertCampaigns(RunContext& run) {
    run.ports.log(QStringLiteral("Aloitetaan kampanjoiden päivitys"));
    run.ports.status(QStringLiteral("Päivitetään kampanjat"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(campaignQuery(run.condition));
    rows.open();
    run.ports.log(kCampaignHeader);
    const auto& product = rows.fieldByName(QStringLiteral("Tuote"));
    const auto& row = rows.fieldByName(QStringLiteral("Rivinro"));
    const auto& oldSales = rows.fieldByName(QStringLiteral("MyyntiHinta"));
    const auto& oldPurchase = rows.fieldByName(QStringLiteral("OstoHInta"));

    data::TUniQuery update(&run.database);
    update.sql().add(kCampaignUpdate);
    SharedKeyRows shared(run.database, campaignTable(), run.condition, rows);
    LostRows lost(run, QStringLiteral("Virhe kampanjan päivityksessä: "));
    qint64& converted = run.changedRows(QStringLiteral("Kampanjarivit"));
    const auto convertRow = [&] {
        const AmountChange sales{oldSales.asFloat(), run.prices.dependentPrice(oldSales.asFloat())};
        const AmountChange purchase{oldPurchase.asFloat(),
                                    run.prices.dependentPurchasePrice(oldPurchase.asFloat())};
        const QString line = campaignLine(product.asString(), row.asInteger(), sales, purchase);
        if (!shared.holdsCurrentRow()) {
            update.paramByName(QStringLiteral("uusihinta")).setFloat(sales.after);
            update.paramByName(QStringLiteral("ostohinta")).setFloat(purchase.after);
            update.paramByName(QStringLiteral("tuote")).setString(product.asString());
            update.paramByName(QStringLiteral("rivi")).setInteger(row.asInteger());
            update.execSql();
        } else if (!shared.update({sales, purchase})) {
            lost.add(line);
            return;
        }
        ++converted;
        run.ports.log(line);
    };
    run.walk(rows, convertRow);
}

void convertRecurringInvoices(RunContext& run) {
    run.ports.log(QStringLiteral("Aloitetaan vakiolaskutusten päivitys"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(recurringInvoiceQuery(run.condition));
    rows.open();
    run.ports.log(kRecurringInvoiceHeader);
    const auto& id = rows.fieldByName(QStringLiteral("id"));
    const auto& customer = rows.fieldByName(QStringLiteral("asiakas"));
    const auto& product = rows.fieldByName(QStringLiteral("tuote"));
    const auto& oldPrice = rows.fieldByName(QStringLiteral("ahinta"));
    const auto& oldTotal = rows.fieldByName(QStringLiteral("yhteensa"));
    const auto& oldPurchase = rows.fieldByName(QStringLiteral("ostohinta"));

    data::TUniQuery update(&run.database);
    update.sql().add(kRecurringInvoiceUpdate);
    qint64& converted = run.changedRows(QStringLiteral("Toistuvaislaskutuksen rivit"));
    const auto convertRow = [&] {
        run.ports.status(QStringLiteral("Vakiolaskutus asiakas ") +
                         QString::number(customer.asInteger()));
        const AmountChange price{oldPrice.asFloat(), run.prices.dependentPrice(oldPrice.asFloat())};
        const AmountChange total{oldTotal.asFloat(), run.prices.dependentPrice(oldTotal.asFloat())};
        const AmountChange purchase{oldPurchase.asFloat(),
                                    run.prices.dependentPurchasePrice(oldPurchase.asFloat())};
        update.paramByName(QStringLiteral("uusihinta")).setFloat(price.after);
        update.paramByName(QStringLiteral("uusiyhteensa")).setFloat(total.after);
        update.paramByName(QStringLiteral("uusiostohinta")).setFloat(purchase.after);
        update.paramByName(QStringLiteral("id")).setInteger(id.asInteger());
        update.execSql();
        ++converted;
        run.ports.log(
            recurringInvoiceLine(customer.asInteger(), product.asString(), price, total, purchase));
    };
    run.walk(rows, convertRow);
}

void convertQuantityDiscounts(RunContext& run) {
    run.ports.log(QStringLiteral("Aloitetaan määräalejen päivitys"));
    run.ports.status(QStringLiteral("Päivitetään määräalet"));
    data::TUniQuery rows(&run.database);
    rows.sql().add(quantityDiscountQuery(run.condition));
    rows.open();
    const auto& number = rows.fieldByName(QStringLiteral("numero"));
    const auto& name = rows.fieldByName(QStringLiteral("nimi"));
    const auto& oldValue = rows.fieldByName(QStringLiteral("arvo"));
    const auto& oldPurchase = rows.fieldByName(QStringLiteral("ostohinta"));

    data::TUniQuery update(&run.database);
    update.sql().add(kQuantityDiscountUpdate);
    qint64& converted = run.changedRows(QStringLiteral("Määräalennukset"));
    const auto convertRow = [&] {
        const AmountChange value{oldValue.asFloat(), run.prices.dependentPrice(oldValue.asFloat())};
        const AmountChange purchase{oldPurchase.asFloat(),
                                    run.prices.dependentPurchasePrice(oldPurchase.asFloat())};
        update.paramByName(QStringLiteral("uusiarvo")).setFloat(value.after);
        update.paramByName(QStringLiteral("ostohinta")).setFloat(purchase.after);
        update.paramByName(QStringLiteral("numero")).setInteger(number.asInteger());
        update.execSql();
        ++converted;
        run.ports.log(quantityDiscountLine(name.asString(), number.asInteger(), value, purchase));
    };
    run.walk(rows, convertRow);
}

}  // namespace vatchange
