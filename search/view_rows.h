#pragma once

#include <QDeadlineTimer>
#include <deque>
#include <functional>
#include <optional>
#include <unordered_map>

#include "data/engine.h"
#include "search/key_places.h"
#include "search/row_test.h"

namespace search {

/// A part of a key: from values of its leading fields to values of the same, both included.
struct KeyRange {
    data::KeyValues low;
    data::KeyValues high;
};

/// The rows of a view over one table: the records in the order of a key, within a range of it, that
/// a test accepts.
///
/// A plain view (no range, no test) knows every row at once. Any other is walked in time slices
/// (learn()): the walk begins at the first row, or at the place where somebody looks, and goes on
/// to both ends. What it has met are the known rows; before and after them stand rows whose number
/// is estimated until the walk has reached that end. Memory: 8 bytes a known row.
class ViewRows {
  public:
    /// How the numbers of rows changed: rows inserted (or, negative, taken away) before the first
    /// known row and after the last one; `learned` rows turned from estimated to known.
    struct Change {
        qint64 before = 0;
        qint64 after = 0;
        bool learned = false;
        bool any() const { return before != 0 || after != 0 || learned; }
    };

    explicit ViewRows(data::RecordFile& file) : m_file(&file), m_places(file) {}

    /// Another view. The first known rows are not there yet: call learn() or start().
    /// @throws data::DataError(BadValue) for a range that is none of the key's; the view stays.
    void show(int key, std::optional<KeyRange> range, RowTest test);
    int key() const { return m_places.key(); }
    bool isPlain() const { return !m_range && !m_test; }
    /// Records of the table, as counted when the view began.
    qint64 total() const { return m_places.count(); }
    const std::optional<KeyRange>& range() const { return m_range; }
    const RowTest& test() const { return m_test; }

    qint64 count() const;
    bool isCountExact() const { return isPlain() || (m_startReached && m_endReached); }
    /// Whether the row's record can be told now.
    bool isKnown(qint64 row) const;
    /// Whether a record, as it is now, belongs to the view.
    bool isWanted(data::RecordId id, const QByteArray& bytes) const;
    /// Whether the known rows are the same records in the same order.
    bool hasSameRows(const ViewRows& other) const { return m_ids == other.m_ids; }

    /// Walks on, for as long as the deadline lets it. @return false when nothing is left to do.
    /// `change` tells what became of the row numbers.
    bool learn(const QDeadlineTimer& deadline, Change& change);
    /// Looks at all records now and makes every row known. `goOn`, called some times a second with
    /// the share done (0 to 1), breaks off by false: then the view is to be thrown away.
    bool learnAll(const std::function<bool(double)>& goOn);
    /// The part of the records (0 to 1) that the walk has passed.
    double progress() const;

    /// Records of the rows row ... row + count - 1, as far as known.
    std::vector<data::StoredRecord> read(qint64 row, int count);

    /// Begins the walk at the row's estimated place; row numbers are then estimates around it.
    void startAtRow(qint64 row);
    /// Begins the walk at the end of the key.
    void startAtEnd();

    /// The row of a record, or, where it is no row of the view, of the next one that is (the last
    /// row when there is none). May begin the walk anew at the record (`*restarted`), then numbers
    /// are estimates. Nothing when the view is empty so far.
    std::optional<qint64> rowOf(const data::StoredRecord& record, bool* restarted);
    /// The row of the first record whose leading key fields are >= the values.
    std::optional<qint64> nearest(const data::KeyValues& values, bool* restarted);

  private:
    void begin(const data::StoredRecord& first, qint64 itsPlace);
    void beginFromStart();
    bool walk(data::Direction direction, const QDeadlineTimer& deadline);
    void take(const data::StoredRecord& record, data::Direction direction);
    bool isAccepted(const data::StoredRecord& record) const;
    int side(const QByteArray& bytes) const;
    void estimate(Change& change);
    const data::StoredRecord* probe(size_t row);
    void warm(size_t low, size_t high, int levels);
    qint64 rowInKnown(const data::StoredRecord& record);
    void limits();

    data::RecordFile* m_file;
    KeyPlaces m_places;
    std::optional<KeyRange> m_range;
    RowTest m_test;

    std::deque<data::RecordId> m_ids;  // the known rows
    // Records that searches among the known rows looked at: they look at the same ones again.
    std::unordered_map<data::RecordId, data::StoredRecord> m_probes;
    std::optional<data::StoredRecord> m_first;  // how far the walk has come, at each side
    std::optional<data::StoredRecord> m_last;
    bool m_startReached = false;
    bool m_endReached = false;
    qint64 m_before = 0;  // estimated rows
    qint64 m_after = 0;
    // In places of the key: the range's, and how far the walk has come.
    qint64 m_low = 0;
    qint64 m_high = 0;
    qint64 m_firstPlace = 0;
    qint64 m_endPlace = 0;
};

}  // namespace search
