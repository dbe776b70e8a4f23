#pragma once

#include <QWidget>
#include <optional>

#include "vatchange/run/change_run.h"

namespace vatchange {

/// Resumes a run of the journal with the definition that it was started with, whatever is saved
/// under that name now and whether or not the run mark is set. Shows progress, with a button to
/// stop, and how it ended.
/// @return nothing if the journal has no definition of the run, which the user has been told.
/// @throws data::DataError.
std::optional<RunResult> resumeWithProgress(QWidget* parent, data::Database& database,
                                            const data::JournalRun& run);

}  // namespace vatchange
