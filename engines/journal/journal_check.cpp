#include <QDateTime>

#include "engines/journal/journal_places.h"
#include "engines/journal/journal_store.h"

// What is wrong with a stored journal.

namespace engines::journal {

void JournalStore::checkRun(const StoredHead& head, QStringList& problems) {
    const qint64 run = head.run.number;
    try {
        const auto tableCount = static_cast<int>(tables(run).size());
        visit(run, Direction::Forward, [&](const JournalEntry& entry) {
            if (!entry.isMark && entry.table >= tableCount)
                throw damaged(run, "an entry names an unknown table");
            return true;
        });
        if (head.last != 0 && lastEntry(run) != head.last)
            throw damaged(run, "its last entries are missing");
        checkNotes(run);
    } catch (const DataError& error) {
        problems += error.english();
    }
}

void JournalStore::checkNotes(qint64 run) {
    Statement names(m_db, "SELECT name FROM zdb_note WHERE run = ?1", m_fileName);
    names.bind(1, run);
    while (names.step())
        note(run, names.text(0));
}

QStringList JournalStore::check() {
    QStringList problems;
    if (!exists())
        return problems;
    try {
        checkNotes(0);
    } catch (const DataError& error) {
        problems += error.english();
    }
    std::vector<std::pair<qint64, QByteArray>> heads;
    Statement rows(m_db, "SELECT number, head FROM zdb_run ORDER BY number", m_fileName);
    while (rows.step())
        heads.emplace_back(rows.integer(0), rows.bytes(1));
    rows.reset();
    for (const auto& [number, bytes] : heads) {
        try {
            checkRun(decodeHead(number, bytes), problems);
        } catch (const DataError& error) {
            problems += error.english();
        }
    }
    Statement strays(m_db,
                     "SELECT count(*) FROM zdb_change WHERE place >> 32 NOT IN "
                     "(SELECT number FROM zdb_run)",
                     m_fileName);
    if (strays.step() && strays.integer(0) > 0)
        problems +=
            QStringLiteral("run journal: %1 entries belong to no run").arg(strays.integer(0));
    return problems;
}

}  // namespace engines::journal
