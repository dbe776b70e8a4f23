#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

/// Whether earlier unfinished runs allow this one. One that has changed dependent rows which this
/// run would change again stands in its way, and so does the note of one that an older version left
/// behind if this run changes dependent rows at all. The user is asked; unattended the run is
/// refused and RunResult::blocked set. Returns false if the run must not start; the reason has been
/// shown.
bool earlierRunsAllow(RunContext& run, const RunOptions& options);

}  // namespace vatchange
