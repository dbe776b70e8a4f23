#pragma once

#include <QChar>
#include <QString>

namespace data {

/// A number by a display format such as "#0.00", "#.##", "#,##0.00" or "#0.0000€ ":
///   0        a digit that is always shown
///   #        a digit that is shown when there is one
///   .        where the decimal separator stands; decimals beyond the format are rounded off
///   ,        before the point: groups of three, separated by a no-break space
///   others   stand as they are; inside '...' or "..." also the above
/// A negative number gets "-" in front, unless it is shown as 0. The decimal separator is left out
/// when no decimals follow it, and at least one digit is shown.
QString formatNumber(const QString& format, double value, QChar decimalSeparator);

}  // namespace data
