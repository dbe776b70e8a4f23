#pragma once

#include <QChar>
#include <QString>

namespace search {

/// A product's stored stock quantities in one store, in stock units.
struct StockBalance {
    double balance = 0;   ///< saldo
    double waiting = 0;   ///< odotus: arrived, not yet booked
    double ordered = 0;   ///< tilattu, from the supplier
    double reserved = 0;  ///< varattu, for customers
};

/// Division of a stock quantity into units and portions.
struct StockUnit {
    QString unit;            ///< VarastoYks
    double portionSize = 0;  ///< AnnosKoko: centilitres of a portion
    double stockFactor = 0;  ///< VarastoKerroin: portions of a unit
};

/// What can still be sold: balance + waiting + ordered - reserved.
double freeQuantity(const StockBalance& stock);

/// A quantity as shown. Bottles and barrels (units "PLO" and "TYN") are shown as whole units and
/// the rest of the opened one: 3.25 bottles of ten portions of 4 cl are "3P 10.0cl". Any other unit
/// gives a number of at most three decimals. The quantity is rounded to a millionth first, so that
/// binary sums close to a whole unit show the whole unit.
QString quantityText(double quantity, const StockUnit& unit, QChar decimalSeparator);

/// The stock situation: balance=waiting/ordered,  reserved.
QString stockSituationText(const StockBalance& stock, const StockUnit& unit,
                           QChar decimalSeparator);

/// A gross price without its VAT, with two decimals. @param ratePercent 24 means 24 %.
QString priceWithoutVatText(double price, double ratePercent, QChar decimalSeparator);

/// Decimals of the settings' price format: the number of characters after its first ".".
int priceDecimals(const QString& priceFormat);
/// The display format of a price: "#0." and a "0" for each decimal.
QString priceDisplayFormat(const QString& priceFormat);

/// The key for a quick search: names if the text begins with a lower-case Finnish letter, else
/// product numbers (which may begin with a capital; names are typed in lower case).
QString quickSearchKey(const QString& text);

}  // namespace search
