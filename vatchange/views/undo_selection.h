#pragma once

#include <vector>

#include "vatchange/changes/change_list.h"
#include "vatchange/journal/run_chain.h"

namespace vatchange {

/// The records of rows as the scope of an undo of a run: those that it changed and that have not
/// been taken back. Of an order the run's changes are taken back together, so that its header fits
/// its rows. Empty `records`: nothing of the rows can be undone.
UndoScope undoScopeOfRows(const ChangeList& list, qint64 run, const std::vector<int>& rows);

/// "Tuotteet 3: T00001, T00002, T00003", a line for each table.
QString scopeText(const UndoScope& scope);

}  // namespace vatchange
