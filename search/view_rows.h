#pragma once

#include <QDeadlineTimer>
#include <deque>
#include <functional>
#include <optional>
#include <unordered_map>

#include "data/engine/engine.h"
#include "search/key_places.h"
#include "search/row_test.h"

namespace search {

/// A part of a key, between two values of its leading fields, inclusive.
struct KeyRange {
    data::KeyValues low;
    data::KeyValues high;
};

/// The rows of a view over one table: the records accepted by a test, in the order of a key, within
/// a range of it.
/// In a plain view (no range, no test) all rows are known immediately. Any other view is walked in
/// time slices (learn()), from the first row or from the user's position, towards both ends.
/// Records visited so far are the known rows; the numbers of rows before and after them are
/// estimates until the walk reaches that end. Memory: 8 bytes per known row.
class ViewRows {
  public:
    /// Rows inserted (negative: removed) before the first known row and after the last one;
    /// `learned`: estimated rows became known.
    struct Change {
        qint64 before = 0;
        qint64 after = 0;
        bool learned = false;
        bool any() const { return before != 0 || after != 0 || learned; }
    };

    explicit ViewRows(data::TableFile& file) : m_file(&file), m_places(file) {}

    /// Sets another view, not walked yet: learn() follows.
    /// @throws data::DataError(BadValue) for a range that does not fit the key; the view stays.
    void show(int key, std::optional<KeyRange> range, RowTest test);
    int key() const { return m_places.key(); }
    bool isPlain() const { return !m_range && !m_test; }
    /// Records of the table, counted when the view was created.
    qint64 total() const { return m_places.count(); }
    const std::optional<KeyRange>& range() const { return m_range; }
    const RowTest& test() const { return m_test; }

    qint64 count() const;
    bool isCountExact() const { return isPlain() || (m_startReached && m_endReached); }
    /// Whether the row's record is known.
    bool isKnown(qint64 row) const;
    /// Whether a record belongs to the view.
    bool isWanted(data::RecordId id, const QByteArray& bytes) const;
    /// Whether the known rows are the same records in the same order.
    bool hasSameRows(const ViewRows& other) const { return m_ids == other.m_ids; }

    /// Continues the walk until the deadline. @return false if it is finished. `change` receives
    /// the change of the row numbers.
    bool learn(const QDeadlineTimer& deadline, Change& change);
    /// Walks all records now, so that every row is known. `onProgress`, called several times a
    /// second with the share done (0 to 1), cancels by returning false: the view must be discarded
    /// then.
    /// `byKey`, if given, accepts every record that the view's test accepts.
    bool learnAll(const std::function<bool(double)>& onProgress,
                  const std::optional<KeyTextTest>& byKey = {});
    /// The share of the records (0 to 1) visited so far.
    double progress() const;

    /// Records of `count` rows from `row`, as far as known.
    std::vector<data::StoredRecord> read(qint64 row, int count);

    /// Restarts the walk at the row's estimated position; row numbers become estimates.
    void startAtRow(qint64 row);
    /// Restarts the walk at the end of the view.
    void startAtEnd();

    /// The row of a record or, if it is not in the view, of the next one (else the last row). May
    /// restart the walk at the record (`*restarted`); row numbers are estimates then. Nothing if
    /// the view is empty.
    std::optional<qint64> rowOf(const data::StoredRecord& record, bool* restarted);
    /// The row of the first record whose leading key fields are >= the values.
    std::optional<qint64> nearest(const data::KeyValues& values, bool* restarted);

  private:
    class Search;

    void begin(const data::StoredRecord& first, qint64 firstPlace);
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

    data::TableFile* m_file;
    KeyPlaces m_places;
    std::optional<KeyRange> m_range;
    RowTest m_test;

    std::deque<data::RecordId> m_ids;  // the known rows
    // Records read by binary searches among the known rows, which start with the same ones.
    std::unordered_map<data::RecordId, data::StoredRecord> m_probes;
    std::optional<data::StoredRecord> m_first;  // the ends of the walk so far
    std::optional<data::StoredRecord> m_last;
    bool m_startReached = false;
    bool m_endReached = false;
    qint64 m_before = 0;  // estimated rows
    qint64 m_after = 0;
    // As positions in the key: the range, and the walk so far.
    qint64 m_low = 0;
    qint64 m_high = 0;
    qint64 m_firstPlace = 0;
    qint64 m_endPlace = 0;
};

}  // namespace search
