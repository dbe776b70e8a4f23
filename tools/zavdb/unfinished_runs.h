#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace tools {

inline const QString kForce = QStringLiteral("force");

/// @throws CommandError if the company has an unfinished run (or a run is going on), naming it.
/// `what`: of the command, "be copied".
void requireNoUnfinishedRun(data::Database& database, const QString& company, const QString& what);

}  // namespace tools
