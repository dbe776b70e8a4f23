#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace tools {

/// Appends the rows of a CSV file to a table; with `replace` empties it first. One transaction: an
/// error changes nothing. @return the number of rows.
/// @throws CommandError naming file, line, field and value; data::DataError.
qint64 importTable(data::Database& database, const QString& table, const QString& fileName,
                   bool replace);

}  // namespace tools
