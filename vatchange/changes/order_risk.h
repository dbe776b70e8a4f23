#pragma once

#include <QDate>
#include <QString>

namespace vatchange {

/// What decides whether a converted order row is at risk.
struct OpenOrderRow {
    double delivered = 0.0;
    double open = 0.0;  ///< still to deliver
    QDate delivery;     ///< of the row, else of the order; invalid: none
};

/// Why the row's new price may be wrong, in words: a part has been delivered at the old rate, or
/// the rest will be before the day of change. Empty: it is not at risk.
QString orderRisk(const OpenOrderRow& row, const QDate& dayOfChange);

}  // namespace vatchange
