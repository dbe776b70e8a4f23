#pragma once

#include <QtGlobal>
#include <algorithm>
#include <bitset>
#include <unordered_map>
#include <vector>

namespace data {

/// A set of numbers, such as record ids: a bit each where they are dense.
class IdSet {
  public:
    /// @return false if the id was there already.
    bool add(qint64 id) {
        Block& block = m_blocks[id >> kBlockBits];
        const size_t bit = bitOf(id);
        if (block[bit])
            return false;
        block[bit] = true;
        ++m_count;
        return true;
    }
    void remove(qint64 id) {
        const auto found = m_blocks.find(id >> kBlockBits);
        if (found == m_blocks.end() || !found->second[bitOf(id)])
            return;
        found->second[bitOf(id)] = false;
        --m_count;
    }
    bool contains(qint64 id) const {
        const auto block = m_blocks.find(id >> kBlockBits);
        return block != m_blocks.end() && block->second[bitOf(id)];
    }
    qint64 count() const { return m_count; }
    /// Calls `see` with each id, in ascending order.
    template <typename See>
    void visit(See&& see) const {
        std::vector<qint64> numbers;
        for (const auto& [number, block] : m_blocks)
            numbers.push_back(number);
        std::sort(numbers.begin(), numbers.end());
        for (const qint64 number : numbers) {
            const Block& block = m_blocks.at(number);
            for (size_t bit = 0; bit < block.size(); ++bit) {
                if (block[bit])
                    see((number << kBlockBits) + static_cast<qint64>(bit));
            }
        }
    }

  private:
    static constexpr int kBlockBits = 10;
    using Block = std::bitset<1 << kBlockBits>;
    static size_t bitOf(qint64 id) { return static_cast<size_t>(id & ((1 << kBlockBits) - 1)); }

    std::unordered_map<qint64, Block> m_blocks;
    qint64 m_count = 0;
};

}  // namespace data
