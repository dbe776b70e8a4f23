#pragma once

#include <QWidget>
#include <optional>

#include "vatchange/journal/undo.h"

namespace vatchange {

/// Undoes a run, or a part of it, with progress and a button to stop it, and shows how it ended
/// with what was left as it is. User and computer are filled in; the change log gets its lines.
/// @return nothing if it was refused or failed, which the user has been told.
std::optional<UndoResult> undoWithProgress(QWidget* parent, data::Database& database, qint64 run,
                                           UndoOptions options);

}  // namespace vatchange
