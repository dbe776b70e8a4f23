#pragma once

#include <QStringList>
#include <functional>

#include "data/engine/engine.h"

namespace tools {

/// Which records of a source belong to its copy; empty: all.
using BelongsToCopy = std::function<bool(const QByteArray& record)>;
using CopyProgress = std::function<void(qint64 records)>;

/// Makes a table the byte for byte copy of another one, in batches that are stored at once. What it
/// holds already is compared with the source, in the order in which both are stored, and goes on to
/// count as copied as long as it is the same; otherwise the table is emptied and copied anew. So a
/// copy that was killed goes on where it stopped. @return how many records were inserted.
/// @throws CommandError naming the table, record and key of a record that the copy cannot hold;
///         data::DataError.
qint64 copyTable(data::TableFile& source, data::Database& targetDatabase, data::TableFile& target,
                 const BelongsToCopy& belongs, const CopyProgress& progress);

struct Comparison {
    qint64 records = 0;    ///< of the source
    QStringList findings;  ///< one line a difference, the first ones; empty: the tables are equal
};

/// Compares two tables record by record and byte by byte, in the order in which they are stored.
Comparison compareTables(data::TableFile& source, data::TableFile& target,
                         const BelongsToCopy& belongs, const CopyProgress& progress);

/// Removes every record, in parts.
void removeAll(data::TableFile& records);

}  // namespace tools
