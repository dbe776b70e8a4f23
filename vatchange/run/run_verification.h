#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

/// Compares a run that was not stopped with its rehearsal and stores the result with the run;
/// shows a difference.
void compareAtEnd(RunContext& run, const RunOptions& options);

/// Stores how the steps ended, verifies the run and logs one line, "Tarkastus: ..."; shows it if
/// something is not as it should be. Without a journal does nothing. A verification that fails
/// counts as a failed step.
void verifyAtEnd(RunContext& run);

}  // namespace vatchange
