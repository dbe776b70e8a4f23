#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

/// Lists the rows that the run's steps will change in the journal, before its first change, unless
/// that has been done. A step whose query fails lists its rows when its turn comes; it then reports
/// the error. Rows that an unfinished run of the same batch has changed are left out and reported.
/// @throws data::DataError if the journal cannot be read or written.
void listRows(RunContext& run);

}  // namespace vatchange
