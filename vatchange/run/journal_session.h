#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

// A run's beginning and end in the company's journal.

/// Begins the run in the journal, or resumes one, and sets RunContext::journal. Without a journal
/// does nothing. Returns false if the run must not start; the reason is in the result and has been
/// shown.
bool enterJournal(RunContext& run, const LoadedDefinition& loaded, const RunOptions& options);

/// How the run has ended: stopped, incomplete, with errors or done, in this order of precedence.
data::RunState stateOf(const RunContext& run);

/// Ends the run in the journal. A failure is shown and counts as a failed step; the run then
/// stays unfinished.
void leaveJournal(RunContext& run);

}  // namespace vatchange
