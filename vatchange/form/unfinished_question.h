#pragma once

#include <QWidget>
#include <optional>

#include "vatchange/run/change_run.h"

namespace vatchange {

/// Asks what to do if the definition has an unfinished run (same name, same values): resume it,
/// start anew or leave. Starting anew shows the rows that would be multiplied again and, if the
/// user agrees, accepts the unfinished run as it is.
/// @return how to run; nothing to leave.
/// @throws data::DataError.
std::optional<RunOptions> askAboutUnfinished(QWidget* parent, data::Database& database,
                                             const QString& name,
                                             const ChangeDefinition& definition);

}  // namespace vatchange
