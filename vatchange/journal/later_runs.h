#pragma once

#include <map>
#include <optional>
#include <vector>

#include "data/engine/run_journal.h"
#include "data/journal/id_set.h"

namespace vatchange {

/// The runs after a run, its own undos apart: who changed a record last. Reads their journals when
/// it is first asked.
class LaterRuns {
  public:
    LaterRuns(data::RunJournal& journal, qint64 run) : m_journal(journal), m_run(run) {}

    /// The latest of them that changed the record; 0: none.
    qint64 lastThatChanged(const QString& table, data::RecordId record);

  private:
    struct Later {
        qint64 run;
        std::map<QString, data::IdSet> records;  // by table in capitals
    };
    void read();

    data::RunJournal& m_journal;
    qint64 m_run;
    std::optional<std::vector<Later>> m_later;  // newest first
};

}  // namespace vatchange
