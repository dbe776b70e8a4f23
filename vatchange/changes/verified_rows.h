#pragma once

#include "vatchange/changes/run_reader.h"

namespace vatchange {

/// Verifies a run whose journal has been read, marks the rows that verification has found and adds
/// rows for what was not changed. @throws data::DataError.
void addVerification(data::Database& database, RunReader& reader, ChangeList& list);

}  // namespace vatchange
