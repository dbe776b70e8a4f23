#pragma once

#include <QDateTime>

#include "data/engine/engine.h"

namespace company {

/// The run mark: the row of the settings table that keeps a finished change from being run twice.
/// Set when the first row found has a non-empty `data`.
bool ExecutionMarkExists(data::Database& database);

/// @return the number of rows deleted.
int DeleteExecutionMark(data::Database& database);

/// Inserts the mark's row, or updates `data` of the existing one, with the time as
/// yyyy-mm-dd hh:nn:ss.
void writeExecutionMark(data::Database& database, const QDateTime& when);

/// True when a program of this file name writes the mark: "taksavaihe.exe", or "taksavaihe" on
/// platforms whose programs carry no suffix; case ignored.
bool programWritesMark(const QString& programFileName);

}  // namespace company
