#pragma once

#include <vector>

#include "data/journal/id_set.h"

namespace data {

/// Sets of ids by table.
class IdSets {
  public:
    /// @return false if the id was there already.
    bool add(int table, qint64 id) {
        if (static_cast<size_t>(table) >= m_tables.size())
            m_tables.resize(static_cast<size_t>(table) + 1);
        const bool added = m_tables[static_cast<size_t>(table)].add(id);
        m_count += added ? 1 : 0;
        return added;
    }
    bool contains(int table, qint64 id) const {
        return static_cast<size_t>(table) < m_tables.size() &&
               m_tables[static_cast<size_t>(table)].contains(id);
    }
    qint64 count() const { return m_count; }

  private:
    std::vector<data::IdSet> m_tables;
    qint64 m_count = 0;
};

}  // namespace data
