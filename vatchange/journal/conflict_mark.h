#pragma once

#include <optional>
#include <vector>

#include "vatchange/journal/undo.h"

namespace vatchange {

/// What an undo left of one record, as a mark of its journal.
struct ToldConflicts {
    qint64 seq = 0;  ///< of the record's last entry in the run that is undone
    std::vector<UndoConflict> conflicts;
};
QByteArray conflictMark(const ToldConflicts& told);
/// Nothing if the mark is another one.
std::optional<ToldConflicts> conflictsOfMark(const QByteArray& mark);

}  // namespace vatchange
