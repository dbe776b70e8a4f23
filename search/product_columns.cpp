#include "search/product_columns.h"

#include <cmath>

#include "data/record/display_format.h"

namespace search {

namespace {

// Keys of TUOTE.
const QString kNumberKey = QStringLiteral("1");
const QString kNameKey = QStringLiteral("5");

bool isPortioned(const StockUnit& unit) {
    const QString name = unit.unit.trimmed();
    return name.compare(QLatin1String("PLO"), Qt::CaseInsensitive) == 0 ||
           name.compare(QLatin1String("TYN"), Qt::CaseInsensitive) == 0;
}

}  // namespace

double freeQuantity(const StockBalance& stock) {
    return stock.balance + stock.waiting + stock.ordered - stock.reserved;
}

QString quantityText(double quantity, const StockUnit& unit, QChar decimalSeparator) {
    if (!isPortioned(unit))
        return data::formatNumber(QStringLiteral("#0.###"), quantity, decimalSeparator);
    const double settled = std::round(quantity * 1e6) / 1e6;
    const double whole = std::trunc(settled);
    const double left = std::abs((settled - whole) * unit.portionSize * unit.stockFactor);
    // The fraction has no sign of its own, so a shortage of less than a unit gets it here.
    const QString sign = settled < 0 && whole == 0 ? QStringLiteral("-") : QString();
    return sign + data::formatNumber(QStringLiteral("0"), whole, decimalSeparator) +
           QStringLiteral("P ") +
           data::formatNumber(QStringLiteral("0.0"), left, decimalSeparator) + QStringLiteral("cl");
}

QString stockSituationText(const StockBalance& stock, const StockUnit& unit,
                           QChar decimalSeparator) {
    const auto text = [&](double quantity) {
        return quantityText(quantity, unit, decimalSeparator);
    };
    return text(stock.balance) + QStringLiteral("=") + text(stock.waiting) + QStringLiteral("/") +
           text(stock.ordered) + QStringLiteral(",  ") + text(stock.reserved);
}

QString priceWithoutVatText(double price, double ratePercent, QChar decimalSeparator) {
    return data::formatNumber(QStringLiteral("#0.00"), price / (ratePercent / 100 + 1),
                              decimalSeparator);
}

int priceDecimals(const QString& priceFormat) {
    const qsizetype point = priceFormat.indexOf(QLatin1Char('.'));
    return point < 0 ? 0 : static_cast<int>(priceFormat.size() - point - 1);
}

QString priceDisplayFormat(const QString& priceFormat) {
    return QStringLiteral("#0.") + QString(priceDecimals(priceFormat), QLatin1Char('0'));
}

QString quickSearchKey(const QString& text) {
    if (text.isEmpty())
        return kNumberKey;
    const QChar first = text.front();
    const bool lowerCase = (first >= QLatin1Char('a') && first <= QLatin1Char('z')) ||
                           first == QChar(u'ä') || first == QChar(u'å') || first == QChar(u'ö');
    return lowerCase ? kNameKey : kNumberKey;
}

}  // namespace search
