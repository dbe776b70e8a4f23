#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "data/engine/engine.h"

namespace data {

/// The records shown by a record table: in the order of one key, within a range of it, accepted by
/// a test. Reads ahead in growing batches while a walk continues in one direction. Records read
/// ahead are used only from the exact position (record and key value) that they follow; after any
/// other write than to the current record, call forget().
/// A call that throws leaves key, range and test unchanged.
class KeyView {
  public:
    struct Range {
        KeyValues low;
        KeyValues high;
    };
    using Accept = std::function<bool(const StoredRecord&)>;

    KeyView(TableFile& file, const KeyDef& key);

    void setKey(const KeyDef& key);  ///< also removes the range
    void setRange(std::optional<Range> range);
    const std::optional<Range>& range() const { return m_range; }
    void setAccept(Accept accept);  ///< empty: all
    void forget();

    std::optional<StoredRecord> first();
    std::optional<StoredRecord> last();
    /// The view's next or previous record from a position, which need not be in the view or exist.
    std::optional<StoredRecord> step(const StoredRecord& from, Direction direction);
    /// The first record whose leading key fields equal the values.
    std::optional<StoredRecord> find(const KeyValues& values);
    /// The first record whose leading key fields are at or after the values.
    std::optional<StoredRecord> findNearest(const KeyValues& values);
    bool contains(const StoredRecord& record) const;
    /// Compares a record's leading key fields with values, in the order of the key.
    int compare(const StoredRecord& record, const KeyValues& values) const;

  private:
    bool isBefore(const StoredRecord& record) const;  // before the range's low end
    bool isAfter(const StoredRecord& record) const;
    int nextSize();
    std::optional<StoredRecord> begin(std::vector<StoredRecord> batch, int asked,
                                      Direction direction, const KeyValues* only = nullptr);
    std::optional<StoredRecord> scan(const KeyValues* only = nullptr);
    void fetch(std::vector<StoredRecord> batch, int asked);
    std::vector<StoredRecord> seekFrom(const KeyValues& values, SeekOp op, int asked);
    bool isSamePlace(const StoredRecord& record) const;

    TableFile& m_file;
    const KeyDef* m_key;
    std::optional<Range> m_range;
    Accept m_accept;

    // Read ahead: m_ahead[m_aheadAt ...] follow m_anchor in m_direction; m_ended: there are no
    // more.
    std::optional<StoredRecord> m_anchor;
    Direction m_direction = Direction::Forward;
    std::vector<StoredRecord> m_ahead;
    size_t m_aheadAt = 0;
    bool m_ended = false;
    int m_level = 0;
};

}  // namespace data
