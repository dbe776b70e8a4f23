#include "vatchange/journal/later_runs.h"

#include <algorithm>

namespace vatchange {

using data::Direction;
using data::IdSet;
using data::JournalEntry;
using data::JournalRun;
using data::RunKind;

void LaterRuns::read() {
    m_later.emplace();
    const std::vector<JournalRun> runs = m_journal.runs();
    // an undo of the run, an undo of that, and so on
    std::vector<qint64> own{m_run};
    for (const JournalRun& run : runs) {
        if (run.number <= m_run)
            continue;
        if (run.kind == RunKind::Undo &&
            std::find(own.begin(), own.end(), run.undoneRun) != own.end()) {
            own.push_back(run.number);
            continue;
        }
        Later later{run.number, {}};
        std::vector<IdSet*> sets;
        for (const data::JournalTable& table : m_journal.tables(run.number))
            sets.push_back(&later.records[table.name.toUpper()]);
        m_journal.visit(run.number, Direction::Forward, [&](const JournalEntry& entry) {
            if (!entry.isMark)
                sets.at(static_cast<size_t>(entry.table))->add(entry.record);
            return true;
        });
        m_later->push_back(std::move(later));
    }
    std::reverse(m_later->begin(), m_later->end());
}

qint64 LaterRuns::lastThatChanged(const QString& table, data::RecordId record) {
    if (!m_later)
        read();
    const QString name = table.toUpper();
    for (const Later& later : *m_later) {
        const auto found = later.records.find(name);
        if (found != later.records.end() && found->second.contains(record))
            return later.run;
    }
    return 0;
}

}  // namespace vatchange
