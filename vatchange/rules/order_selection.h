#pragma once

#include <QtGlobal>

namespace vatchange {

/// The highest delivery state of a sales order, and state of a purchase order, that is open.
inline constexpr qint64 kLastOpenSalesState = 3;
inline constexpr qint64 kLastOpenPurchaseState = 4;

/// Charging methods whose sales orders are skipped.
inline constexpr qint64 kSkippedChargingMethods[] = {14, 16};
inline bool isSkippedChargingMethod(qint64 method) {
    return method == kSkippedChargingMethods[0] || method == kSkippedChargingMethods[1];
}

}  // namespace vatchange
