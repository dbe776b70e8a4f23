#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "data/engine/run_journal.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

// Questions to the run journal. All functions throw data::DataError.

/// The state's name in windows: "kesken".
QString stateName(data::RunState state);

/// "ajo 12 (määrittely Alv255, 01.09.2024 00:30:00, kesken)"
QString runText(const data::JournalRun& run);

/// The newest unfinished run of a definition of this name (case ignored) and these values.
std::optional<data::JournalRun> unfinishedRun(data::RunJournal& journal, const QString& name,
                                              const ChangeDefinition& definition);

/// What a table that runs change holds, in Finnish: "kampanjarivit"; any other table's name.
QString tableText(const QString& table);

/// Number of records of a table that a run changed, each counted once.
struct ChangedRecords {
    QString table;
    qint64 records = 0;
};
/// In the order in which the run first changed the tables.
std::vector<ChangedRecords> changedRecords(data::RunJournal& journal, qint64 run);
/// "asiakashinnastojen rivit 120, tuotteet 15"
QString changedRecordsText(const std::vector<ChangedRecords>& tables);

}  // namespace vatchange
