#pragma once

#include <functional>
#include <map>
#include <optional>

#include "data/engine/run_journal.h"
#include "data/journal/id_sets.h"
#include "vatchange/journal/order_fingerprint.h"

namespace vatchange {

// How runs and their undos hang together. An undo's entries carry as origin the seq of the last
// entry of the record that they take back.

/// What an undo was asked for, stored as a note of its run.
struct UndoScope {
    bool exact = false;
    QString table;  ///< empty: the whole run
    QString key;    ///< empty: the whole table
    bool operator==(const UndoScope&) const = default;
};
inline const QString kUndoNote = QStringLiteral("undo");
QByteArray undoNote(const UndoScope& scope);
UndoScope undoScopeOf(data::RunJournal& journal, qint64 run);

/// Shows the last entry of each record of a run, latest first, until `see` returns false. Marks are
/// left out.
void visitRecords(data::RunJournal& journal, qint64 run,
                  const std::function<bool(const data::JournalEntry&)>& see);

/// Seqs (as ids of table 0) of the last entries of records that undos have taken back and no undo
/// of those has brought again.
data::IdSets takenBack(data::RunJournal& journal, qint64 run);

/// The latest run after `run` that changed one of its records (ids by index of the run's tables)
/// and still stands; 0 if there is none. The run's own undos do not count.
qint64 laterRunOver(data::RunJournal& journal, qint64 run, const data::IdSets& records);

/// Fingerprints that undos of the run, undos of those and so on have left of orders: the latest of
/// each order, by header table in capitals and number.
using OrderFingerprints = std::map<std::pair<QString, qint64>, QByteArray>;
OrderFingerprints fingerprintsOfUndos(data::RunJournal& journal, qint64 run);

/// Marks a run as being undone; keeps its state for settleState().
void beginUndoneState(data::RunJournal& journal, qint64 run);
/// Sets a run's state by what its undos have taken back, and that of the run that it undid itself.
void settleState(data::RunJournal& journal, qint64 run);

}  // namespace vatchange
