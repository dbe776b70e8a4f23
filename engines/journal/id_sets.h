#pragma once

#include <vector>

#include "data/journal/id_set.h"

namespace engines::journal {

/// Counts records, each once, as sets of ids by table.
class IdSets {
  public:
    void add(int table, qint64 id) {
        if (static_cast<size_t>(table) >= m_tables.size())
            m_tables.resize(static_cast<size_t>(table) + 1);
        if (m_tables[static_cast<size_t>(table)].add(id))
            ++m_count;
    }
    qint64 count() const { return m_count; }

  private:
    std::vector<data::IdSet> m_tables;
    qint64 m_count = 0;
};

}  // namespace engines::journal
