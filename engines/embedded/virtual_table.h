#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QString>

#include "engines/data_names.h"
#include "engines/embedded/stored_table.h"

namespace engines::embedded {

class Connection;

/// Registers the module through which SQL accesses the record tables.
void registerVirtualTables(Connection& connection);

/// SQL that creates a record table's virtual table. In the main schema, so that statements wait for
/// other programs as for ordinary tables.
QByteArray virtualTableSql(const QString& tableName);

/// How to scan a table; encoded in the number that SQLite passes from planning to running.
struct ScanPlan {
    static constexpr int kById = -1;     ///< all records in id order
    static constexpr int kOneId = -2;    ///< the record with the given id
    static constexpr int kByField = -3;  ///< the records with the given value of `field`
    int key = kById;
    int field = 0;       ///< for kByField
    int equalCount = 0;  ///< leading segments compared for equality
    int low = 0;         ///< 1: > on the next segment, 2: >=
    int high = 0;        ///< 1: < on the next segment, 2: <=
    bool backward = false;
    bool imageOnly = false;  ///< all columns read can be restored from the key

    int packed() const;
    static ScanPlan unpacked(int number);
};

/// xBestIndex of the module: chooses the key and the constraints it serves.
int bestIndex(StoredTable& table, sqlite3_index_info* info);

}  // namespace engines::embedded
