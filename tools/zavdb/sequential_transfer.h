#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace tools {

struct LoadResult {
    qint64 records = 0;
    bool hasEndMark = false;  ///< without it the file may be truncated
};

/// Appends the records of an unformatted sequential file (see SequentialReader) to a table, byte
/// for byte; an auto-increment number of 0 becomes the next one. Where the table's last field is a
/// variable text or binary area, a record may end anywhere in it; the rest becomes zeros.
/// One transaction: an error changes nothing. Memory use is independent of the file's size.
/// @throws CommandError naming file, record and byte, and the key of a duplicate; data::DataError.
LoadResult loadTable(data::Database& database, const QString& table, const QString& fileName);

/// Writes every record of a table in full, in the order of key 0 (without keys: storage order).
/// @return the number of records. @throws SequentialFileError, data::DataError.
qint64 saveTable(data::TableFile& records, QIODevice& output);

}  // namespace tools
