#pragma once

#include <QtGlobal>
#include <bitset>
#include <unordered_map>
#include <vector>

namespace data {

/// Sets of ids by table, a bit each where ids are dense.
class IdSets {
  public:
    /// @return false if the id was there already.
    bool add(int table, qint64 id) {
        if (static_cast<size_t>(table) >= m_tables.size())
            m_tables.resize(static_cast<size_t>(table) + 1);
        auto bit = m_tables[static_cast<size_t>(table)][id >> kBlockBits][placeOf(id)];
        if (bit)
            return false;
        bit = true;
        ++m_count;
        return true;
    }
    bool contains(int table, qint64 id) const {
        if (static_cast<size_t>(table) >= m_tables.size())
            return false;
        const Blocks& blocks = m_tables[static_cast<size_t>(table)];
        const auto block = blocks.find(id >> kBlockBits);
        return block != blocks.end() && block->second[placeOf(id)];
    }
    qint64 count() const { return m_count; }

  private:
    static constexpr int kBlockBits = 10;
    static size_t placeOf(qint64 id) { return static_cast<size_t>(id & ((1 << kBlockBits) - 1)); }

    using Blocks = std::unordered_map<qint64, std::bitset<1 << kBlockBits>>;
    std::vector<Blocks> m_tables;
    qint64 m_count = 0;
};

}  // namespace data
