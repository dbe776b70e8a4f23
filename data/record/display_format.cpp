#include "data/record/display_format.h"

#include <algorithm>
#include <cmath>

namespace data {

namespace {

struct Pattern {
    QString prefix;
    QString suffix;
    int minWholeDigits = 0;  // digits always shown before the point
    int minDecimals = 0;
    int maxDecimals = 0;
    bool grouped = false;
};

Pattern readPattern(const QString& format) {
    Pattern pattern;
    QChar quote;
    bool inDigits = false;
    bool afterPoint = false;
    for (const QChar c : format) {
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            else
                (inDigits ? pattern.suffix : pattern.prefix).append(c);
            continue;
        }
        const bool isDigit = c == QLatin1Char('0') || c == QLatin1Char('#');
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
        } else if (isDigit && afterPoint) {
            ++pattern.maxDecimals;
            if (c == QLatin1Char('0'))
                pattern.minDecimals = pattern.maxDecimals;
        } else if (isDigit) {
            inDigits = true;
            if (c == QLatin1Char('0') || pattern.minWholeDigits > 0)
                ++pattern.minWholeDigits;
        } else if (c == QLatin1Char('.') && !afterPoint) {
            inDigits = afterPoint = true;
        } else if (c == QLatin1Char(',') && !afterPoint) {
            pattern.grouped = true;
        } else {
            (inDigits ? pattern.suffix : pattern.prefix).append(c);
        }
    }
    return pattern;
}

}  // namespace

QString formatNumber(const QString& format, double value, QChar decimalSeparator) {
    if (!std::isfinite(value))
        return QString::number(value);
    const Pattern pattern = readPattern(format);
    const QString digits = QString::number(std::fabs(value), 'f', pattern.maxDecimals);
    QString whole = digits.section(QLatin1Char('.'), 0, 0);
    QString decimals = digits.section(QLatin1Char('.'), 1, 1);
    while (decimals.size() > pattern.minDecimals && decimals.endsWith(QLatin1Char('0')))
        decimals.chop(1);
    const bool isZero = std::all_of(digits.begin(), digits.end(), [](QChar c) {
        return c == QLatin1Char('0') || c == QLatin1Char('.');
    });
    if (whole == QLatin1String("0") && pattern.minWholeDigits == 0 && !decimals.isEmpty())
        whole.clear();
    whole = whole.rightJustified(pattern.minWholeDigits, QLatin1Char('0'));
    if (pattern.grouped)
        for (qsizetype at = whole.size() - 3; at > 0; at -= 3)
            whole.insert(at, QChar(QChar::Nbsp));
    QString text;
    if (value < 0 && !isZero)
        text += QLatin1Char('-');
    text += pattern.prefix + whole;
    if (!decimals.isEmpty())
        text += decimalSeparator + decimals;
    return text + pattern.suffix;
}

}  // namespace data
