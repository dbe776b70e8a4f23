#include "vatchange/changes/order_rows.h"

#include "vatchange/journal/record_fields.h"
#include "vatchange/journal/verification_text.h"
#include "vatchange/rules/order_selection.h"

namespace vatchange {

namespace {

const QString kSalesRows = QStringLiteral("MTRIVI");
const QString kPurchaseRows = QStringLiteral("WINOTRI");

QDate dateIn(const data::TFieldCacheItem* field, const QByteArray& record) {
    return field == nullptr ? QDate() : data::readDate(*field, bytesOf(record));
}

double amountIn(const data::TFieldCacheItem* field, const QByteArray& record) {
    return field == nullptr ? 0.0 : amountOf(*field, bytesOf(record));
}

}  // namespace

bool OrderRows::isRowTable(const QString& table) {
    return table.compare(kSalesRows, Qt::CaseInsensitive) == 0 ||
           table.compare(kPurchaseRows, Qt::CaseInsensitive) == 0;
}

OrderRows::OrderRows(data::Database& database, const QString& rowTable)
    : m_sales(rowTable.compare(kSalesRows, Qt::CaseInsensitive) == 0),
      m_headers(openIfThere(database, m_sales ? QStringLiteral("MT") : QStringLiteral("WINOT"))),
      m_rows(database.openTable(rowTable)) {
    const data::RecordLayout& rows = m_rows->layout();
    m_order = fieldOf(rows, "TilausNro");
    m_delivered = fieldOf(rows, m_sales ? "ToimitettuYhteensa" : "Toimitetu");
    m_open = fieldOf(rows, m_sales ? "Toimitettava" : "Tulematta");
    m_rowDelivery = fieldOf(rows, m_sales ? "ToimitusPvm" : "VahvisettuTuloPvm");
    if (m_headers) {
        m_delivery = fieldOf(m_headers->layout(), m_sales ? "Toimituspaiva" : "toimitusPvm");
        m_method = fieldOf(m_headers->layout(), "Veloitustapa");
    }
}

const std::optional<data::StoredRecord>& OrderRows::header(const QByteArray& row) {
    const qint64 order = m_order == nullptr ? 0 : integerOf(*m_order, bytesOf(row));
    if (order != m_headerOf) {
        m_headerOf = order;
        m_header.reset();
        if (m_headers && !m_headers->keys().empty()) {
            auto found = m_headers->seek(0, data::SeekOp::Equal, {data::Value(order)}, 1);
            if (!found.empty())
                m_header = std::move(found.front());
        }
    }
    return m_header;
}

OpenOrderRow OrderRows::open(const QByteArray& row) {
    OpenOrderRow open{amountIn(m_delivered, row), amountIn(m_open, row),
                      dateIn(m_rowDelivery, row)};
    if (!open.delivery.isValid()) {
        if (const auto& order = header(row))
            open.delivery = dateIn(m_delivery, order->bytes);
    }
    return open;
}

QString OrderRows::passedOver(LeftReason reason, const QByteArray& row) {
    if (reason == LeftReason::TableNotChosen || reason == LeftReason::ChangedSince ||
        reason == LeftReason::Undone)
        return {};
    const auto& order = header(row);
    if (reason == LeftReason::Restriction)
        return QStringLiteral("tilaus ohitettu: toimitus ennen rajausta");
    if (reason != LeftReason::Rule)
        return QStringLiteral("tilaus ohitettu: ") + reasonFinnish(reason);
    const qint64 method =
        m_method == nullptr || !order ? 0 : integerOf(*m_method, bytesOf(order->bytes));
    return m_sales && isSkippedChargingMethod(method)
               ? QStringLiteral("tilaus ohitettu: veloitustapa %1").arg(method)
               : QString();
}

}  // namespace vatchange
