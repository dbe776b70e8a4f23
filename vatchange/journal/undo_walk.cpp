#include "vatchange/journal/undo_walk.h"

#include "vatchange/journal/conflict_mark.h"

namespace vatchange {

namespace {

using data::Direction;
using data::JournalEntry;

constexpr int kEntriesAtATime = 512;
constexpr size_t kGatheredAtATime = 20000;  // records with several entries: some 10 MB

}  // namespace

UndoWalk::UndoWalk(data::Database& database, qint64 run, const UndoOptions& options,
                   UndoTables& tables, UndoPorts& ports, UndoResult& result)
    : m_journal(*database.journal()),
      m_run(run),
      m_options(options),
      m_tables(tables),
      m_ports(ports),
      m_result(result),
      m_orders(database, run, options.dryRun),
      m_undo(database, options, ports, result) {}

bool UndoWalk::selects(const UndoTable& table, const QByteArray& key) const {
    const UndoScope& scope = m_options.scope;
    if (scope.key.isEmpty() && scope.records.empty())
        return true;
    const QString text = table.key(key);
    return (scope.key.isEmpty() || text == scope.key) &&
           (scope.records.empty() || scope.records.contains({table.stored.name.toUpper(), text}));
}

void UndoWalk::prepare() {
    m_taken = takenBack(m_journal, m_run);
    m_journal.visit(m_run, Direction::Backward, [this](const JournalEntry& entry) {
        if (entry.isMark)
            return true;
        const UndoTable* table = m_tables.at(entry.table);
        if (table == nullptr || !selects(*table, entry.key))
            return true;
        if (!m_seen.add(entry.table, entry.record))
            m_several.add(entry.table, entry.record);
        else if (!table->consumed && !m_taken.contains(0, entry.seq) &&
                 !table->isRunMark(entry.key))
            m_records.add(entry.table, entry.record);
        return true;
    });
}

void UndoWalk::takeUp(qint64 undo) {
    m_journal.visit(undo, Direction::Forward, [this](const JournalEntry& entry) {
        if (!entry.isMark || m_orders.takeUp(entry.mark))
            return true;
        if (const auto told = conflictsOfMark(entry.mark)) {
            m_told.add(0, told->seq);
            for (const UndoConflict& conflict : told->conflicts) {
                ++m_result.conflicts;
                m_ports.conflict(conflict);
            }
        }
        return true;
    });
}

void UndoWalk::perform() {
    const qint64 last = m_journal.lastEntry(m_run);
    m_journal.visit(m_run, Direction::Backward, [this, last](const JournalEntry& entry) {
        m_ports.progress(last - entry.seq, last);
        m_result.cancelled = m_ports.cancelled();
        if (m_result.cancelled)
            return false;
        visitEntry(entry);
        return true;
    });
    if (!m_result.cancelled)
        takeBackHeld();
    m_orders.closeOrder();
}

void UndoWalk::visitEntry(const JournalEntry& entry) {
    if (entry.isMark) {
        m_orders.see(entry.mark);
        return;
    }
    UndoTable* table = m_tables.at(entry.table);
    if (table == nullptr || !selects(*table, entry.key))
        return;
    const bool several = m_several.contains(entry.table, entry.record);
    if ((several && !m_handled.add(entry.table, entry.record)) || m_taken.contains(0, entry.seq))
        return;
    takeBack(*table, several ? wholeChange(entry) : netChangeOf(entry));
}

NetChange UndoWalk::wholeChange(const JournalEntry& last) {
    const RecordKey record{last.table, last.record};
    if (!m_gathered.contains(record))
        gather(last);
    NetChange change = std::move(m_gathered.at(record));
    m_gathered.erase(record);
    return change;
}

/// Net changes of the next records with several entries, `last` being the first one's last entry.
void UndoWalk::gather(const JournalEntry& last) {
    m_gathered.clear();
    data::IdSets skipped;
    qint64 from = last.seq + 1;
    for (;;) {
        const auto batch = m_journal.entries(m_run, from, Direction::Backward, kEntriesAtATime);
        for (const JournalEntry& entry : batch) {
            if (entry.isMark || !m_several.contains(entry.table, entry.record))
                continue;
            const RecordKey record{entry.table, entry.record};
            if (const auto found = m_gathered.find(record); found != m_gathered.end()) {
                putBefore(found->second, entry);
                continue;
            }
            const bool waits =
                entry.seq == last.seq ||
                (!m_handled.contains(entry.table, entry.record) && !m_taken.contains(0, entry.seq));
            if (skipped.contains(entry.table, entry.record))
                continue;
            if (waits && m_gathered.size() < kGatheredAtATime)
                m_gathered.emplace(record, netChangeOf(entry));
            else
                skipped.add(entry.table, entry.record);
        }
        if (batch.size() < kEntriesAtATime)
            return;
        from = batch.back().seq;
    }
}

void UndoWalk::takeBack(UndoTable& table, const NetChange& change) {
    if (change.nothing)
        return;
    if (table.orders != nullptr) {
        const qint64 order = table.keyValue(change.key, 0).toLongLong();
        switch (m_orders.judge(*table.orders, order)) {
            case UndoOrders::Judgement::LeftNow:
                tell(change.seq, {{UndoConflict::Reason::Order,
                                   table.orders->header,
                                   QString::number(order),
                                   {},
                                   {},
                                   {}}});
                return;
            case UndoOrders::Judgement::Left:
                return;
            case UndoOrders::Judgement::TakenBack:
                break;
        }
    }
    if (!m_options.dryRun)
        m_journal.setOrigin(change.seq);
    try {
        m_undo.takeBack(table, change, [&](const std::vector<UndoConflict>& conflicts) {
            tell(change.seq, conflicts);
        });
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::Locked)
            throw;
        m_held.push_back(change);
    }
}

void UndoWalk::tell(qint64 seq, const std::vector<UndoConflict>& conflicts) {
    if (conflicts.empty() || !m_told.add(0, seq))
        return;
    if (!m_options.dryRun)
        m_journal.mark(conflictMark({seq, conflicts}));
    for (const UndoConflict& conflict : conflicts) {
        ++m_result.conflicts;
        m_ports.conflict(conflict);
    }
}

/// Tries the records that another program held once more.
void UndoWalk::takeBackHeld() {
    const std::vector<NetChange> again = std::exchange(m_held, {});
    for (const NetChange& change : again)
        takeBack(*m_tables.at(change.table), change);
    for (const NetChange& change : m_held) {
        const UndoTable& table = *m_tables.at(change.table);
        ++m_result.held;
        m_ports.conflict(
            {UndoConflict::Reason::Held, table.stored.name, table.key(change.key), {}, {}, {}});
    }
}

}  // namespace vatchange
