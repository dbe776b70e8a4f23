#pragma once

#include <sqlite3.h>

#include <map>
#include <utility>
#include <vector>

#include "data/engine/engine.h"
#include "engines/data_names.h"

namespace engines::embedded {

class StoredTable;

/// The records of a table by the value of a whole-number field that no key has, made for the run of
/// one statement: a subquery that looks for such a value in a large table once for every row
/// outside of it then reads the table once. Rows that are looked for only once or twice are found
/// by reading through the table, without an index.
class TransientIndexes {
  public:
    using Entries = std::vector<std::pair<qint64, RecordId>>;  // ascending

    /// Forgets all: to be called whenever a statement begins or ends.
    void clear() { m_fields.clear(); }

    /// The index of a field; nullptr as long as it is not worth making. Valid until the statement
    /// ends or a record is written.
    const Entries* find(StoredTable& table, int field);

  private:
    struct Field {
        int searches = 0;
        sqlite3_int64 changes = 0;  ///< of the connection when it was made
        bool made = false;
        Entries entries;
    };
    std::map<std::pair<StoredTable*, int>, Field> m_fields;
};

}  // namespace engines::embedded
