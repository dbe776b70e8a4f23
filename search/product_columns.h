#pragma once

#include <QChar>
#include <QString>

namespace search {

/// A product's stock in one store, in stock units. Unlike the free quantity, the parts are stored.
struct StockBalance {
    double balance = 0;   ///< saldo
    double waiting = 0;   ///< odotus: arrived, not yet entered
    double ordered = 0;   ///< tilattu, from the supplier
    double reserved = 0;  ///< varattu, for customers
};

/// What turns a stock quantity into units and portions.
struct StockUnit {
    QString unit;            ///< VarastoYks
    double portionSize = 0;  ///< AnnosKoko: centilitres of a portion
    double stockFactor = 0;  ///< VarastoKerroin: portions of a unit
};

/// What can still be sold: balance + waiting + ordered - reserved.
double freeQuantity(const StockBalance& stock);

/// A quantity as shown. Bottles and barrels (units "PLO" and "TYN") are counted as whole units and
/// what is left in the opened one: 3.25 bottles of ten portions of 4 cl are "3P 10.0cl". Every
/// other unit gives a plain number of at most three decimals. A quantity counts to the millionth,
/// so that sums of decimals that come to a whole unit show one.
QString quantityText(double quantity, const StockUnit& unit, QChar decimalSeparator);

/// The stock situation in one text: balance=waiting/ordered,  reserved.
QString stockSituationText(const StockBalance& stock, const StockUnit& unit,
                           QChar decimalSeparator);

/// A gross price without its VAT, with two decimals. @param ratePercent 24 means 24 %.
QString priceWithoutVatText(double price, double ratePercent, QChar decimalSeparator);

/// Decimals that the price format of the settings asks for: its characters after the first ".".
int priceDecimals(const QString& priceFormat);
/// The display format of a price: "#0." and a "0" for every decimal.
QString priceDisplayFormat(const QString& priceFormat);

/// The key that a quick search for a text uses: names for a text that begins with a lower-case
/// Finnish letter, product numbers for all others (also for capital letters: product numbers have
/// them, and who looks for a name types it small).
QString quickSearchKey(const QString& text);

}  // namespace search
