#include "vatchange/orders/order_walk.h"

#include "data/clock.h"

namespace vatchange {

Q_LOGGING_CATEGORY(kOrderTrace, "taksavaihe.orders", QtWarningMsg)

void traceOrders(const QString& text) {
    qCDebug(kOrderTrace).noquote()
        << data::Clock::preciseNow().toString(QStringLiteral("hh:mm:ss:zzz ")) + text;
}

namespace {

data::DataError withPlace(const data::DataError& error, qint64 order, const data::TtbTable& rows) {
    QString place = QStringLiteral("tilaus %1").arg(order);
    if (error.table().compare(rows.tableName(), Qt::CaseInsensitive) == 0 && !rows.isEmpty())
        place += QStringLiteral(", rivi %1")
                     .arg(rows.fieldByName(QStringLiteral("RiviNro")).asInteger());
    return error.inPlace(place);
}

}  // namespace

void OrderWalk::run(data::TUniQuery& query, const QString& numberField, const QString& statusName,
                    const data::TtbTable& rows, const std::function<void(qint64 order)>& convert) {
    query.open();
    const qint64 total = query.recordCount();
    if (total > 0) {
        m_ports.progress(0, total);
        query.first();
        const data::TQueryField& number = query.fieldByName(numberField);
        for (qint64 done = 0; !query.eof() && !stopRequested(); query.next()) {
            const qint64 order = number.asInteger();
            ++done;
            m_ports.status(
                QStringLiteral("%1 %2 (%3 / %4)").arg(statusName).arg(order).arg(done).arg(total));
            try {
                convert(order);
            } catch (const data::DataError& error) {
                throw withPlace(error, order, rows);
            }
            m_ports.progress(done, total);
        }
    }
    query.close();
}

bool OrderWalk::stopRequested() {
    m_ports.processEvents();
    m_stopped = m_stopped || m_ports.cancelled();
    return m_stopped;
}

}  // namespace vatchange
