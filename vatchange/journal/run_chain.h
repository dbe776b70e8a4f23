#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>

#include "data/engine/run_journal.h"
#include "data/journal/id_sets.h"
#include "vatchange/journal/order_fingerprint.h"

namespace vatchange {

// Relations between runs and their undos. The origin of an undo's entry is the seq of the run's
// last entry of the record that it takes back.

/// What an undo was asked for, stored as a note of its run.
struct UndoScope {
    bool exact = false;
    QString table;  ///< empty: the whole run
    QString key;    ///< empty: the whole table
    /// Tables (in capitals) and keys of the only records to take back; empty: no such limit.
    std::set<std::pair<QString, QString>> records = {};

    bool isWhole() const { return table.isEmpty() && records.empty(); }
    bool operator==(const UndoScope&) const = default;
};
inline const QString kUndoNote = QStringLiteral("undo");
QByteArray undoNote(const UndoScope& scope);
UndoScope undoScopeOf(data::RunJournal& journal, qint64 run);

/// Shows the last entry of each record of a run, latest first, until `see` returns false. Marks are
/// left out.
void visitRecords(data::RunJournal& journal, qint64 run,
                  const std::function<bool(const data::JournalEntry&)>& see);

/// Seqs (as ids of table 0) of the last entries of records that undos have taken back, without
/// those that a later undo of the undo has redone.
data::IdSets takenBack(data::RunJournal& journal, qint64 run);

/// The latest run after `run` that changed one of its records (ids by index of the run's tables)
/// and has not been undone; 0 if there is none. The run's own undos do not count.
qint64 laterRunOver(data::RunJournal& journal, qint64 run, const data::IdSets& records);

/// Order fingerprints recorded by undos of the run, undos of those and so on: the latest of each
/// order, by header table in capitals and number.
using OrderFingerprints = std::map<std::pair<QString, qint64>, QByteArray>;
OrderFingerprints fingerprintsOfUndos(data::RunJournal& journal, qint64 run);

/// Marks a run as being undone; keeps its state for settleState().
void beginUndoneState(data::RunJournal& journal, qint64 run);
/// Sets a run's state from what its undos have taken back. If the run is an undo itself, also sets
/// the state of the run that it undid.
void settleState(data::RunJournal& journal, qint64 run);

}  // namespace vatchange
