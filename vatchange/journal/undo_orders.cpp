#include "vatchange/journal/undo_orders.h"

#include <QList>

namespace vatchange {

namespace {

const QByteArray kDecisionWord = QByteArrayLiteral("undo-order");
const QByteArray kTakenBack = QByteArrayLiteral("whole");
const QByteArray kLeft = QByteArrayLiteral("left");

}  // namespace

UndoOrders::UndoOrders(data::Database& database, qint64 run, bool dryRun)
    : m_database(database),
      m_journal(*database.journal()),
      m_dryRun(dryRun),
      m_newer(fingerprintsOfUndos(m_journal, run)) {}

int UndoOrders::kindOf(const QString& header) {
    return header.compare(kSalesOrderTables.header, Qt::CaseInsensitive) == 0 ? 0 : 1;
}

void UndoOrders::see(const QByteArray& mark) {
    if (const auto order = orderMarkOf(mark))
        m_marks.emplace(std::pair(kindOf(order->table), order->number),
                        QByteArray::fromHex(order->fingerprint));
}

bool UndoOrders::takeUp(const QByteArray& mark) {
    if (const auto order = orderMarkOf(mark)) {
        if (m_open == Open{kindOf(order->table), order->number})
            m_open.reset();
        return true;
    }
    const QList<QByteArray> words = mark.split(' ');
    if (words.size() != 4 || words[0] != kDecisionWord)
        return false;
    const Open order{kindOf(QString::fromUtf8(words[1])), words[2].toLongLong()};
    if (words[3] == kLeft) {
        m_left.add(order.kind, order.number);
    } else {
        m_takenBack.add(order.kind, order.number);
        m_open = order;
    }
    return true;
}

QByteArray UndoOrders::present(int kind, qint64 number) {
    Kind& order = m_kinds[static_cast<size_t>(kind)];
    if (!order.headers) {
        order.headers = m_database.openTable(order.tables.header);
        order.rows = m_database.openTable(order.tables.rows);
    }
    return orderFingerprint(*order.headers, *order.rows, number);
}

std::optional<QByteArray> UndoOrders::expected(int kind, qint64 number) {
    const QString& header = m_kinds[static_cast<size_t>(kind)].tables.header;
    if (const auto newer = m_newer.find({header, number}); newer != m_newer.end())
        return newer->second;
    const auto mark = m_marks.find({kind, number});
    if (mark == m_marks.end())
        return std::nullopt;
    QByteArray fingerprint = mark->second.toHex();
    m_marks.erase(mark);
    return fingerprint;
}

UndoOrders::Judgement UndoOrders::judge(const OrderTables& tables, qint64 number) {
    const int kind = kindOf(tables.header);
    if (m_left.contains(kind, number))
        return Judgement::Left;
    if (!m_takenBack.contains(kind, number)) {
        const std::optional<QByteArray> fingerprint = expected(kind, number);
        const bool whole = !fingerprint || *fingerprint == present(kind, number);
        closeOrder();
        if (!m_dryRun)
            m_journal.mark(kDecisionWord + ' ' + tables.header.toUtf8() + ' ' +
                           QByteArray::number(number) + ' ' + (whole ? kTakenBack : kLeft));
        (whole ? m_takenBack : m_left).add(kind, number);
        if (!whole)
            return Judgement::LeftNow;
    }
    if (m_open != Open{kind, number})
        closeOrder();
    m_open = Open{kind, number};
    return Judgement::TakenBack;
}

void UndoOrders::closeOrder() {
    if (!m_open)
        return;
    const Open order = *m_open;
    m_open.reset();
    if (!m_dryRun)
        m_journal.mark(orderMarkText({m_kinds[static_cast<size_t>(order.kind)].tables.header,
                                      order.number, present(order.kind, order.number)}));
}

}  // namespace vatchange
