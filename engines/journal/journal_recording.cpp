#include <algorithm>

#include "engines/journal/journal_places.h"
#include "engines/journal/journal_store.h"

// Recording of a run's changes.

namespace engines::journal {

void JournalStore::startRecording(qint64 run) {
    m_run = run;
    m_origin = 0;
    m_next = m_storedNext = 1;
    m_tables.clear();
    m_storedTables = 0;
    m_recorded.clear();
    m_records = {};
    m_pending.clear();
}

void JournalStore::stopRecording() {
    startRecording(0);
    m_insert = Statement();
}

void JournalStore::append(const QByteArray& entry) {
    if (m_insert.get() == nullptr)
        m_insert =
            Statement(m_db, "INSERT INTO zdb_change(place, entry) VALUES (?1, ?2)", m_fileName);
    m_insert.bind(1, placeOf(m_run, m_next));
    m_insert.bind(2, entry);
    m_insert.run();
    ++m_next;
}

void JournalStore::mark(const QByteArray& text) {
    JournalEntry entry;
    entry.isMark = true;
    entry.mark = text;
    append(encodeEntry(entry, m_run, m_next));
    stored();
}

JournalStore::Recorded& JournalStore::recordedTable(const RecordLayout& layout,
                                                    const std::vector<KeyDef>& keys) {
    std::shared_ptr<Recorded>& known = m_recorded[layout.tableName()];
    if (!known)
        known = std::make_shared<Recorded>(Recorded{-1, RecordDifference(layout, keys)});
    if (known->number >= 0)
        return *known;
    const JournalTable table{layout.tableName(), layout.recordLength(),
                             layoutFingerprint(layout, keys)};
    // a resumed run may have changed it before
    const auto same =
        std::find_if(m_tables.begin(), m_tables.end(), [&table](const JournalTable& other) {
            return other.name == table.name && other.fingerprint == table.fingerprint;
        });
    const auto number = same - m_tables.begin();
    if (same == m_tables.end()) {
        const QByteArray entry = encodeTable(table, m_run, number);
        Statement insert(m_db, "INSERT INTO zdb_table(place, entry) VALUES (?1, ?2)", m_fileName);
        insert.bind(1, placeOf(m_run, number));
        insert.bind(2, entry);
        insert.run();
        m_tables.push_back(table);
    }
    known->number = static_cast<int>(number);
    return *known;
}

void JournalStore::record(const RecordLayout& layout, const std::vector<KeyDef>& keys, RecordId id,
                          const QByteArray* before, const QByteArray* after) {
    Recorded& table = recordedTable(layout, keys);
    JournalEntry entry;
    entry.table = table.number;
    entry.record = id;
    entry.origin = m_origin;
    entry.key = table.difference.key(before != nullptr ? *before : *after);
    if (before == nullptr) {
        entry.operation = Operation::Insert;
        entry.changes = table.difference.ofInsert(*after);
    } else if (after == nullptr) {
        entry.operation = Operation::Delete;
        entry.changes = table.difference.ofDelete(*before);
    } else {
        entry.changes = table.difference.between(*before, *after);
        if (entry.changes.empty())
            return;
    }
    append(encodeEntry(entry, m_run, m_next));
    m_pending.emplace_back(table.number, id);
}

void JournalStore::stored() {
    for (const auto& [table, id] : m_pending)
        m_records.add(table, id);
    m_pending.clear();
    m_storedNext = m_next;
    m_storedTables = m_tables.size();
}

void JournalStore::undone() {
    if (m_run == 0)
        return;
    m_pending.clear();
    m_next = m_storedNext;
    m_tables.resize(m_storedTables);
    for (const std::shared_ptr<Recorded>& table : std::as_const(m_recorded)) {
        if (table->number >= static_cast<int>(m_storedTables))
            table->number = -1;
    }
}

}  // namespace engines::journal
