#pragma once

#include <QChar>
#include <QString>

namespace data {

/// Formats a number by a display format such as "#0.00", "#.##", "#,##0.00" or "#0.0000€ ":
///   0        digit, always shown
///   #        digit, shown if significant
///   .        decimal separator; further decimals are rounded off
///   ,        before the point: groups of three, separated by a no-break space
///   others   literal; inside '...' or "..." the above too
/// A negative number gets "-" in front, unless it is shown as 0. A separator without decimals after
/// it is left out, and at least one digit is shown.
QString formatNumber(const QString& format, double value, QChar decimalSeparator);

}  // namespace data
