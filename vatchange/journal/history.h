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

/// Number of records of a table that a run changed, each counted once.
struct ChangedRecords {
    QString table;
    qint64 records = 0;
};
/// In the order in which the run first changed the tables.
std::vector<ChangedRecords> changedRecords(data::RunJournal& journal, qint64 run);
/// "ASALE 120, TUOTE 15"
QString changedRecordsText(const std::vector<ChangedRecords>& tables);

/// Rows of a price table whose prices would be multiplied a second time.
struct RepeatedRows {
    static constexpr int kListed = 10;

    QString table;
    std::vector<data::RecordId> records;  ///< ascending
    QStringList keys;                     ///< of the first kListed, as keyText()
};

/// Rows of customer price lists, campaigns, recurring invoices and quantity discounts that a run
/// changed, whose product that run has not converted yet, and that a definition would change again.
/// Rows that agree in the columns of the step's UPDATE count as one.
std::vector<RepeatedRows> repeatedRows(data::Database& database, qint64 run,
                                       const ChangeDefinition& definition);
/// "ASALE 2 (1001 A1 0 1; 1002 A1 0 1), KAMPPANJA 1 (A1 3)"
QString repeatedRowsText(const std::vector<RepeatedRows>& tables);

}  // namespace vatchange
