#pragma once

#include <QIODevice>

#include "data/engine/engine.h"

namespace tools {

/// Writes every record as CSV: a header of all field names in field-number order, then the records
/// in the order of key 0. Memory use is independent of the table's size. @return the number of
/// records.
/// @throws data::DataError, platform::CsvError.
qint64 exportTable(data::TableFile& records, QIODevice& output);

}  // namespace tools
