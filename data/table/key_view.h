#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "data/engine/engine.h"

namespace data {

/// The records of a table in the order of one key, within a range of it, that a test accepts: what
/// a record table shows. Reads ahead in growing batches while a walk goes on in one direction. What
/// was read ahead is used only from the very place (record and key value) that it follows; after
/// other writes than that of the record stood on, call forget().
///
/// A call that throws leaves key, range and test as they were.
class KeyView {
  public:
    struct Range {
        KeyValues low;
        KeyValues high;
    };
    using Accept = std::function<bool(const StoredRecord&)>;

    KeyView(TableFile& file, const KeyDef& key);

    void setKey(const KeyDef& key);  ///< also drops the range
    void setRange(std::optional<Range> range);
    const std::optional<Range>& range() const { return m_range; }
    void setAccept(Accept accept);  ///< empty: all
    void forget();

    std::optional<StoredRecord> first();
    std::optional<StoredRecord> last();
    /// The next or previous record of the view from a place, which need be neither in the view nor
    /// exist any more.
    std::optional<StoredRecord> step(const StoredRecord& from, Direction direction);
    /// The first record whose leading key fields equal the values.
    std::optional<StoredRecord> find(const KeyValues& values);
    /// The first record whose leading key fields are at or after the values.
    std::optional<StoredRecord> findNearest(const KeyValues& values);
    bool contains(const StoredRecord& record) const;
    /// Compares the leading key fields of a record with values, in the order of the key.
    int compare(const StoredRecord& record, const KeyValues& values) const;

  private:
    bool isBefore(const StoredRecord& record) const;  // below the range's low end
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

    // Read ahead: m_ahead[m_aheadAt ...] follow m_anchor in m_direction; after them comes nothing
    // when m_ended.
    std::optional<StoredRecord> m_anchor;
    Direction m_direction = Direction::Forward;
    std::vector<StoredRecord> m_ahead;
    size_t m_aheadAt = 0;
    bool m_ended = false;
    int m_level = 0;
};

}  // namespace data
