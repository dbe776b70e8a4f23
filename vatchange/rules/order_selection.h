#pragma once

#include <QtGlobal>

namespace vatchange {

/// The highest delivery state of a sales order, and state of a purchase order, that is open.
inline constexpr qint64 kLastOpenSalesState = 3;
inline constexpr qint64 kLastOpenPurchaseState = 4;

/// True for charging methods whose sales orders are skipped.
inline bool isSkippedChargingMethod(qint64 method) {
    return method == 14 || method == 16;
}

}  // namespace vatchange
