#pragma once

#include <memory>
#include <optional>

#include "data/engine/engine.h"
#include "vatchange/changes/order_risk.h"
#include "vatchange/journal/verification.h"

namespace vatchange {

/// Rows of sales or purchase orders with their orders' headers, as they stand.
class OrderRows {
  public:
    static bool isRowTable(const QString& table);

    /// `rowTable`: MTRIVI or WINOTRI.
    OrderRows(data::Database& database, const QString& rowTable);

    OpenOrderRow open(const QByteArray& row);
    /// Why the whole order of a row that was left was passed over, in words; empty if it was not.
    QString passedOver(LeftReason reason, const QByteArray& row);

  private:
    using Field = data::TFieldCacheItem;
    /// The header of a row's order; nothing if there is none.
    const std::optional<data::StoredRecord>& header(const QByteArray& row);

    const bool m_sales;
    std::unique_ptr<data::TableFile> m_headers;
    std::unique_ptr<data::TableFile> m_rows;  // for their layout
    const Field* m_order = nullptr;
    const Field* m_delivered = nullptr;
    const Field* m_open = nullptr;
    const Field* m_rowDelivery = nullptr;
    const Field* m_delivery = nullptr;
    const Field* m_method = nullptr;
    qint64 m_headerOf = 0;
    std::optional<data::StoredRecord> m_header;
};

}  // namespace vatchange
