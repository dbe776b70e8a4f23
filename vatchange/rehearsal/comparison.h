#pragma once

#include <optional>

#include "data/engine/engine.h"
#include "vatchange/journal/rehearsal_note.h"

namespace vatchange {

/// Compares what a run of the current company has changed with its rehearsal: the newest one of a
/// definition of the same name and values that was not stopped, unless another run of them has
/// followed it already. The run mark and dates and times of change are not compared. The order of
/// the changes does not count.
/// @return nothing if there is no such rehearsal. @throws data::DataError; platform::CsvError if
/// its list of changes is damaged.
std::optional<RehearsalComparison> compareWithRehearsal(data::Database& database, qint64 run);

}  // namespace vatchange
