#pragma once

#include <QDateTime>

#include "data/engine/engine.h"

namespace company {

/// The run mark: a row of the settings table that prevents a second run of a finished change.
/// @return whether the first such row has non-empty `data`.
bool ExecutionMarkExists(data::Database& database);

/// What the mark holds: when it was written; empty if there is none.
QString executionMarkText(data::Database& database);

/// @return number of deleted rows
int DeleteExecutionMark(data::Database& database);

/// Inserts or updates the mark with the time as yyyy-mm-dd hh:nn:ss.
void writeExecutionMark(data::Database& database, const QDateTime& when);

/// Whether a program of this file name writes the mark: "taksavaihe.exe" or, except on Windows,
/// "taksavaihe"; case ignored.
bool programWritesMark(const QString& programFileName);

}  // namespace company
