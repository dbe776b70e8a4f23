#pragma once

#include <QtGlobal>
#include <bitset>
#include <unordered_map>
#include <vector>

#include "engines/data_names.h"

namespace engines::journal {

/// Counts records, each once, as sets of ids by table: a bit each where ids are dense.
class IdSets {
  public:
    /// @return false if the id was there already.
    bool add(int table, qint64 id) {
        if (static_cast<size_t>(table) >= m_tables.size())
            m_tables.resize(static_cast<size_t>(table) + 1);
        auto& block = m_tables[static_cast<size_t>(table)][id >> kBlockBits];
        const auto bit = static_cast<size_t>(id & ((1 << kBlockBits) - 1));
        if (block[bit])
            return false;
        block[bit] = true;
        ++m_count;
        return true;
    }
    qint64 count() const { return m_count; }

  private:
    static constexpr int kBlockBits = 10;
    using Blocks = std::unordered_map<qint64, std::bitset<1 << kBlockBits>>;
    std::vector<Blocks> m_tables;
    qint64 m_count = 0;
};

}  // namespace engines::journal
