#pragma once

#include <QStringList>
#include <functional>

#include "data/engine/engine.h"

namespace tools {

/// Which records of a source belong to its copy; empty: all.
using BelongsToCopy = std::function<bool(const QByteArray& record)>;
using CopyProgress = std::function<void(qint64 records)>;

/// Copies a table byte for byte, with one transaction per batch. Compares existing records with the
/// source in storage order and keeps them if equal; else empties the table and copies it again. An
/// interrupted copy therefore resumes. @return the number of records inserted.
/// @throws CommandError naming the table, record and key of a record that cannot be inserted;
///         data::DataError.
qint64 copyTable(data::TableFile& source, data::Database& targetDatabase, data::TableFile& target,
                 const BelongsToCopy& belongs, const CopyProgress& progress);

struct Comparison {
    qint64 records = 0;    ///< of the source
    QStringList findings;  ///< the first differences, one line each; empty: equal
};

/// Compares two tables byte by byte, in storage order.
Comparison compareTables(data::TableFile& source, data::TableFile& target,
                         const BelongsToCopy& belongs, const CopyProgress& progress);

/// Removes every record, in batches.
void removeAll(data::TableFile& records);

}  // namespace tools
