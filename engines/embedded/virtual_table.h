#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QString>

#include "engines/data_names.h"
#include "engines/embedded/stored_table.h"

namespace engines::embedded {

class Connection;

/// Registers the module through which SQL sees the record tables.
void registerVirtualTables(Connection& connection);

/// The SQL that makes the SQL table of a record table, in the main schema: there its statements
/// wait for other programs' as those of ordinary tables do.
QByteArray virtualTableSql(const QString& tableName);

/// How a scan of a table goes; packed into the number that SQLite carries from planning to running.
struct ScanPlan {
    static constexpr int kById = -1;     ///< key: all records in id order
    static constexpr int kOneId = -2;    ///< key: the record with the id given
    static constexpr int kByField = -3;  ///< key: the records with the value of `field` given
    int key = kById;
    int field = 0;       ///< only of kByField
    int equalCount = 0;  ///< leading segments compared for equality
    int low = 0;         ///< 1: > on the next segment, 2: >=
    int high = 0;        ///< 1: < on the next segment, 2: <=
    bool backward = false;
    bool imageOnly = false;  ///< all columns that are read can be told from the key

    int packed() const;
    static ScanPlan unpacked(int number);
};

/// xBestIndex of the module: picks the key and what of the constraints it answers.
int bestIndex(StoredTable& table, sqlite3_index_info* info);

}  // namespace engines::embedded
