#pragma once

#include <QtGlobal>
#include <bitset>
#include <unordered_map>

namespace data {

/// A set of numbers, records' ids or places in a journal: a bit each where they are dense.
class IdSet {
  public:
    /// @return false if the id was there already.
    bool add(qint64 id) {
        Block& block = blockOf(id);
        const size_t bit = bitOf(id);
        if (block[bit])
            return false;
        block[bit] = true;
        ++m_count;
        return true;
    }
    bool contains(qint64 id) const {
        const auto found = m_blocks.find(id >> kBlockBits);
        return found != m_blocks.end() && found->second[bitOf(id)];
    }
    qint64 count() const { return m_count; }

  private:
    static constexpr int kBlockBits = 10;
    using Block = std::bitset<1 << kBlockBits>;

    static size_t bitOf(qint64 id) { return static_cast<size_t>(id & ((1 << kBlockBits) - 1)); }
    Block& blockOf(qint64 id) { return m_blocks[id >> kBlockBits]; }

    std::unordered_map<qint64, Block> m_blocks;
    qint64 m_count = 0;
};

}  // namespace data
