#pragma once

#include <sqlite3.h>

#include <map>
#include <utility>
#include <vector>

#include "data/engine/engine.h"
#include "engines/data_names.h"

namespace engines::embedded {

class StoredTable;

/// Index of a table by an integer field without a key, built for one run of a statement: a subquery
/// that looks up such a field per outer row then reads the table only once. The first lookups read
/// the table without an index.
class TransientIndexes {
  public:
    using Entries = std::vector<std::pair<qint64, RecordId>>;  // ascending

    /// Drops all indexes: call whenever a statement begins or ends.
    void clear() { m_fields.clear(); }

    /// The index of a field; nullptr while it is not worth building. Valid until the statement ends
    /// or a record is written.
    const Entries* find(StoredTable& table, int field);

  private:
    struct Field {
        int searches = 0;
        sqlite3_int64 changes = 0;  ///< the connection's change count when built
        bool made = false;
        Entries entries;
    };
    std::map<std::pair<StoredTable*, int>, Field> m_fields;
};

}  // namespace engines::embedded
