#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

// A run's beginning and end in the company's journal.

/// Begins the run in the journal, or resumes one, and sets RunContext::journal. Without a journal
/// does nothing. Returns false if the run must not start; the reason is in the result and has been
/// shown.
bool enterJournal(RunContext& run, const LoadedDefinition& loaded, const RunOptions& options);

/// What is known of an attempt before anything is logged: to be called first.
RunAttempt newAttempt();
/// Stores the end of the attempt: the log's lines up to now are its own. @throws data::DataError.
void endAttempt(const RunContext& run, data::RunJournal& journal);

/// How the run has ended: stopped, incomplete, with errors or done, in this order of precedence.
data::RunState stateOf(const RunContext& run);

/// Ends the run in the journal. A failure is shown and counts as a failed step; the run then
/// stays unfinished.
void leaveJournal(RunContext& run);

}  // namespace vatchange
