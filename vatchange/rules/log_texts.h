#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "vatchange/definition/change_definition.h"
#include "vatchange/rules/price_rules.h"

namespace vatchange {

// Change log lines with amounts. The decimal separator is a point in every locale.

/// The rounding settings in words, for the log line with a run's parameters.
QString roundingText(const ChangeDefinition& definition);

/// "Tuote: ", each level with a source (old value of the source column, new value of the level),
/// then the purchase prices whose coefficient is not 1; three decimals.
QString productLine(const QString& number, const PriceRules& rules, const ProductPrices& before,
                    const ProductPrices& after);

/// A product that the percent limit passes over: number, limit, and each level with a source with
/// its own price before and after and the change in percent.
QString limitedProductText(const QString& number, const ChangeDefinition& definition,
                           const PriceRules& rules, const ProductPrices& before,
                           const ProductPrices& after);

/// An amount before and after.
struct AmountChange {
    double before = 0.0;
    double after = 0.0;
};

QString customerPriceLine(int customerType, qint64 customer, const QString& product,
                          double quantity, const AmountChange& price, const AmountChange& priceVat0,
                          const AmountChange& purchase);

inline const QString kCampaignHeader = QStringLiteral(
    "Tehdään kampanjat (tuote,rivinro; vanha myynti; uusi myynti; vanha osto; uusi osto)");
QString campaignLine(const QString& product, qint64 row, const AmountChange& sales,
                     const AmountChange& purchase);

inline const QString kRecurringInvoiceHeader = QStringLiteral(
    "Vakiolaskutus (Asiakas, tuote: vanhahinta;uusihinta;vanha yht;uusiyht;vanhaosto;uusiosto)");
QString recurringInvoiceLine(qint64 customer, const QString& product, const AmountChange& price,
                             const AmountChange& total, const AmountChange& purchase);

QString quantityDiscountLine(const QString& name, qint64 number, const AmountChange& value,
                             const AmountChange& purchase);

/// " ( N rivi)", logged after the rows of a dependent table.
QString rowCountLine(qint64 rows);

}  // namespace vatchange
