#include "vatchange/views/undo_selection.h"

#include <map>

#include "vatchange/changes/changed_fields.h"
#include "vatchange/journal/order_fingerprint.h"

namespace vatchange {

namespace {

constexpr int kShownKeys = 8;

bool canBeUndone(const ChangeList& list, qint64 run, int row) {
    const ChangeList::Record record = list.record(list.recordIndex(row));
    return list.runs()[static_cast<size_t>(record.run)].head.number == run &&
           list.kind(row) != ChangeKind::Unchanged &&
           (list.findings(row) & bitOf(ChangeFinding::Undone)) == 0;
}

/// The order of a header or row: "MT 12"; empty for other tables. Keys begin with the number.
QString orderOf(const QString& table, const QString& key) {
    for (const OrderTables& tables : {kSalesOrderTables, kPurchaseOrderTables}) {
        if (table == tables.header || table == tables.rows)
            return tables.header + u' ' + key.section(u' ', 0, 0);
    }
    return {};
}

}  // namespace

UndoScope undoScopeOfRows(const ChangeList& list, qint64 run, const std::vector<int>& rows) {
    UndoScope scope;
    std::set<QString> orders;
    for (const int row : rows) {
        if (!canBeUndone(list, run, row))
            continue;
        const ChangeList::Record record = list.record(list.recordIndex(row));
        const QString table = list.tables()[record.table].toUpper();
        scope.records.emplace(table, record.key);
        if (const QString order = orderOf(table, record.key); !order.isEmpty())
            orders.insert(order);
    }
    for (int row = 0; !orders.empty() && row < list.rowCount(); ++row) {
        const QString table = list.tables()[list.tableOf(row)].toUpper();
        if (!canBeUndone(list, run, row) || orderOf(table, {}).isEmpty())
            continue;
        const QString key = list.record(list.recordIndex(row)).key;
        if (orders.contains(orderOf(table, key)))
            scope.records.emplace(table, key);
    }
    return scope;
}

QString scopeText(const UndoScope& scope) {
    std::map<QString, QStringList> keys;
    for (const auto& [table, key] : scope.records)
        keys[table] += key;
    QStringList lines;
    for (const auto& [table, list] : keys) {
        QString line = QStringLiteral("%1 %2: %3")
                           .arg(tableTitle(table))
                           .arg(list.size())
                           .arg(list.mid(0, kShownKeys).join(QStringLiteral(", ")));
        if (list.size() > kShownKeys)
            line += QStringLiteral(" ...");
        lines += line;
    }
    return lines.join(u'\r');
}

}  // namespace vatchange
