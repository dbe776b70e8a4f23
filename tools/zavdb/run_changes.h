#pragma once

#include <QIODevice>

#include "data/engine/engine.h"

namespace tools {

/// Writes the company's runs as CSV, oldest first. Notes of unfinished runs of older versions come
/// before them, as run 0.
void writeRuns(data::Database& database, QIODevice& output);

/// Writes every change of a run as CSV, a line for each changed field, in the order of the changes.
/// @return the number of changes. @throws vatchange::RunRefused if there is no such run, or a
/// table's description has changed since; data::DataError.
qint64 writeChanges(data::Database& database, qint64 run, QIODevice& output);

}  // namespace tools
