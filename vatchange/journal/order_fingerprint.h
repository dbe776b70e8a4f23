#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "data/engine/engine.h"

namespace vatchange {

/// The two tables of an order; the order number leads key 0 of both.
struct OrderTables {
    QString header;
    QString rows;
};
inline const OrderTables kSalesOrderTables{QStringLiteral("MT"), QStringLiteral("MTRIVI")};
inline const OrderTables kPurchaseOrderTables{QStringLiteral("WINOT"), QStringLiteral("WINOTRI")};

/// Hash, in hexadecimal, over the bytes of an order's header and of all its rows in key order.
/// Empty if there is no such header. @throws DataError.
QByteArray orderFingerprint(data::TableFile& headers, data::TableFile& rows, qint64 number);

/// A run's mark after a finished order: "order MT 4711 <fingerprint>".
struct OrderMark {
    QString table;  ///< of the header
    qint64 number = 0;
    QByteArray fingerprint;
};
QByteArray orderMarkText(const OrderMark& mark);
/// Nothing if the text is no mark of an order.
std::optional<OrderMark> orderMarkOf(const QByteArray& text);

}  // namespace vatchange
