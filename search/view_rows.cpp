#include "search/view_rows.h"

#include <algorithm>
#include <cmath>

namespace search {

using data::Direction;
using data::RecordId;
using data::SeekOp;
using data::StoredRecord;

namespace {

// Records between two checks of the clock.
constexpr int kSlice = 256;
// Smaller errors of an estimate are not corrected, so that the scroll bar does not jitter.
constexpr double kTolerance = 0.15;
constexpr qint64 kSmallestCorrection = 64;
constexpr int kWarmLevels = 10;
constexpr size_t kMaxProbes = 4096;  // about 1 KB each

}  // namespace

void ViewRows::show(int key, std::optional<KeyRange> range, RowTest test) {
    if (range && !range->low.empty()) {
        m_file->seek(key, SeekOp::GreaterOrEqual, range->low, 1);  // throws for bad values
        m_file->seek(key, SeekOp::Greater, range->high, 1);
    }
    m_range = std::move(range);
    m_test = std::move(test);
    m_places.reset(key);
    limits();
    beginFromStart();
}

// Computes the positions of the range's ends.
void ViewRows::limits() {
    m_low = 0;
    m_high = m_places.count();
    if (!m_range)
        return;
    const auto low = m_file->seek(key(), SeekOp::GreaterOrEqual, m_range->low, 1);
    m_low = low.empty() ? m_places.count() : m_places.placeOf(low.front());
    const auto high = m_file->seek(key(), SeekOp::Greater, m_range->high, 1);
    m_high = high.empty() ? m_places.count() : m_places.placeOf(high.front());
    m_high = std::max(m_high, m_low);
}

void ViewRows::beginFromStart() {
    m_ids.clear();
    m_probes.clear();
    m_first.reset();
    m_last.reset();
    m_before = 0;
    m_after = m_high - m_low;
    m_firstPlace = m_endPlace = m_low;
    m_startReached = true;
    m_endReached = m_high == m_low;
    if (!m_range || m_endReached)
        return;
    // The walk continues after a record, so the range's first one is taken here.
    const auto low = m_file->seek(key(), SeekOp::GreaterOrEqual, m_range->low, 1);
    m_endReached = low.empty() || side(low.front().bytes) != 0;
    if (m_endReached) {
        m_after = 0;
        return;
    }
    take(low.front(), Direction::Forward);
    m_after = std::max<qint64>(m_high - m_endPlace, 0);
}

// Restarts the walk at a record of the range.
void ViewRows::begin(const StoredRecord& first, qint64 firstPlace) {
    const double share =
        m_endPlace > m_firstPlace && !m_ids.empty()
            ? static_cast<double>(m_ids.size()) / static_cast<double>(m_endPlace - m_firstPlace)
            : 1.0;
    const qint64 place = std::clamp(firstPlace, m_low, m_high);
    m_ids.clear();
    m_probes.clear();
    m_startReached = m_endReached = false;
    m_firstPlace = m_endPlace = place;
    m_first = first;
    m_before = std::llround(static_cast<double>(place - m_low) * share);
    m_after = std::max<qint64>(std::llround(static_cast<double>(m_high - place) * share), 0);
    take(first, Direction::Forward);
    m_first = first;
}

bool ViewRows::isWanted(RecordId id, const QByteArray& bytes) const {
    return (!m_test || m_test(id, bytes)) && side(bytes) == 0;
}

bool ViewRows::isAccepted(const StoredRecord& record) const {
    return !m_test || m_test(record.id, record.bytes);
}

void ViewRows::take(const StoredRecord& record, Direction direction) {
    const bool forward = direction == Direction::Forward;
    if (isAccepted(record)) {
        if (forward)
            m_ids.push_back(record.id);
        else
            m_ids.push_front(record.id);
    }
    (forward ? m_endPlace : m_firstPlace) += forward ? 1 : -1;
    (forward ? m_last : m_first) = record;
    if (forward && !m_first)
        m_first = record;
}

// -1 below the range, 1 above it, 0 in it.
int ViewRows::side(const QByteArray& bytes) const {
    if (!m_range)
        return 0;
    if (m_file->compare(key(), bytes, m_range->low) < 0)
        return -1;
    return m_file->compare(key(), bytes, m_range->high) > 0 ? 1 : 0;
}

qint64 ViewRows::count() const {
    if (isPlain())
        return m_places.count();
    return m_before + static_cast<qint64>(m_ids.size()) + m_after;
}

bool ViewRows::isKnown(qint64 row) const {
    if (isPlain())
        return row >= 0 && row < m_places.count();
    return row >= m_before && row < m_before + static_cast<qint64>(m_ids.size());
}

double ViewRows::progress() const {
    if (isCountExact() || m_high <= m_low)
        return 1;
    return std::clamp(
        static_cast<double>(m_endPlace - m_firstPlace) / static_cast<double>(m_high - m_low), 0.0,
        1.0);
}

// Walks in one direction until its end or the deadline. @return false at the end.
bool ViewRows::walk(Direction direction, const QDeadlineTimer& deadline) {
    const bool forward = direction == Direction::Forward;
    bool& reached = forward ? m_endReached : m_startReached;
    while (!reached) {
        bool outside = false;
        qint64 seen = 0;
        const auto see = [&](RecordId id, const QByteArray& bytes) {
            if (m_range && side(bytes) != 0) {
                outside = true;
                return false;
            }
            ++seen;
            if (!m_test || m_test(id, bytes)) {
                if (forward)
                    m_ids.push_back(id);
                else
                    m_ids.push_front(id);
            }
            return true;
        };
        std::optional<StoredRecord> last =
            m_file->visit(key(), forward ? m_last : m_first, direction, kSlice, see);
        (forward ? m_endPlace : m_firstPlace) += forward ? seen : -seen;
        reached = outside || !last || seen < kSlice;
        if (last && !outside) {
            if (forward && !m_first)
                m_first = last;
            (forward ? m_last : m_first) = std::move(last);
        }
        if (deadline.hasExpired())
            return !reached;
    }
    return false;
}

bool ViewRows::learn(const QDeadlineTimer& deadline, Change& change) {
    if (isPlain()) {
        while (m_places.learn()) {
            if (deadline.hasExpired())
                return true;
        }
        return false;
    }
    const qint64 before = m_before;
    const qint64 after = m_after;
    const auto known = static_cast<qint64>(m_ids.size());
    if (!m_endReached) {
        walk(Direction::Forward, deadline);
        const qint64 gained = static_cast<qint64>(m_ids.size()) - known;
        m_after -= std::min(gained, m_after);
        change.after += gained + m_after - after;
        change.learned = change.learned || gained > 0;
    }
    const auto knownThen = static_cast<qint64>(m_ids.size());
    if (!m_startReached && (m_endReached || !deadline.hasExpired())) {
        walk(Direction::Backward, deadline);
        const qint64 gained = static_cast<qint64>(m_ids.size()) - knownThen;
        m_before -= std::min(gained, m_before);
        change.before += gained + m_before - before;
        change.learned = change.learned || gained > 0;
    }
    estimate(change);
    if (isCountExact())
        warm(0, m_ids.size(), kWarmLevels);
    return !isCountExact();
}

// Corrects the estimates by the share of records accepted so far.
void ViewRows::estimate(Change& change) {
    const qint64 passed = m_endPlace - m_firstPlace;
    const double share =
        passed > 0 ? static_cast<double>(m_ids.size()) / static_cast<double>(passed) : 1.0;
    const auto corrected = [&](qint64 rows, qint64 places, bool reached) -> qint64 {
        if (reached)
            return 0;
        const qint64 better =
            std::llround(static_cast<double>(std::max<qint64>(places, 0)) * share);
        const qint64 off = std::llabs(better - rows);
        const auto bound = static_cast<qint64>(kTolerance * static_cast<double>(rows));
        return off > std::max(bound, kSmallestCorrection) || rows == 0 ? better : rows;
    };
    const qint64 before = corrected(m_before, m_firstPlace - m_low, m_startReached);
    const qint64 after = corrected(m_after, m_high - m_endPlace, m_endReached);
    change.before += before - m_before;
    change.after += after - m_after;
    m_before = before;
    m_after = after;
}

std::vector<StoredRecord> ViewRows::read(qint64 row, int count) {
    std::vector<StoredRecord> records;
    if (isPlain()) {
        std::optional<StoredRecord> first = m_places.at(row);
        if (!first)
            return records;
        if (count > 1)
            records = m_file->next(key(), *first, Direction::Forward, count - 1);
        records.insert(records.begin(), std::move(*first));
        return records;
    }
    for (qint64 at = row; at < row + count && isKnown(at); ++at) {
        const RecordId id = m_ids[static_cast<size_t>(at - m_before)];
        std::optional<StoredRecord> record = m_file->get(id);
        records.push_back(record ? std::move(*record) : StoredRecord{id, {}});
    }
    return records;
}

void ViewRows::startAtRow(qint64 row) {
    const qint64 rows = count();
    if (isPlain() || rows <= 0)
        return;
    const auto place =
        m_low + static_cast<qint64>(static_cast<double>(row) / static_cast<double>(rows) *
                                    static_cast<double>(m_high - m_low));
    const std::optional<StoredRecord> record = m_places.at(place);
    if (!record)
        return;
    begin(*record, place);
    // The walk begins at exactly this row number.
    const qint64 shift = std::clamp<qint64>(row - m_before, -m_before, m_after);
    m_before += shift;
    m_after -= shift;
}

void ViewRows::startAtEnd() {
    if (isPlain() || isCountExact())
        return;
    const std::optional<StoredRecord> record = m_places.at(m_high - 1);
    if (record)
        begin(*record, m_high - 1);
}

// A record for the binary search among the known rows; null if it is gone.
const StoredRecord* ViewRows::probe(size_t row) {
    const RecordId id = m_ids[row];
    auto found = m_probes.find(id);
    if (found == m_probes.end()) {
        std::optional<StoredRecord> at = m_file->get(id);
        if (!at)
            return nullptr;
        if (m_probes.size() >= kMaxProbes)
            m_probes.clear();
        found = m_probes.emplace(id, std::move(*at)).first;
    }
    return &found->second;
}

// Reads the records that every binary search begins with.
void ViewRows::warm(size_t low, size_t high, int levels) {
    if (low >= high || levels == 0)
        return;
    const size_t middle = low + (high - low) / 2;
    probe(middle);
    warm(low, middle, levels - 1);
    warm(middle + 1, high, levels - 1);
}

qint64 ViewRows::rowInKnown(const StoredRecord& record) {
    const data::KeyValues wanted = m_places.keyValues(record);
    size_t low = 0;
    size_t high = m_ids.size();
    while (low < high) {
        const size_t middle = low + (high - low) / 2;
        const StoredRecord* at = probe(middle);
        const int order = at != nullptr ? m_file->compare(key(), at->bytes, wanted) : 1;
        if (order < 0 || (order == 0 && at->id < record.id))
            low = middle + 1;
        else
            high = middle;
    }
    return m_before + static_cast<qint64>(low);
}

std::optional<qint64> ViewRows::rowOf(const StoredRecord& record, bool* restarted) {
    if (isPlain()) {
        if (count() == 0)
            return std::nullopt;
        return std::min(m_places.placeOf(record), count() - 1);
    }
    const bool beforeFirst = !m_startReached && m_first && m_places.compare(record, *m_first) < 0;
    const bool afterLast = !m_endReached && (!m_last || m_places.compare(record, *m_last) > 0);
    if (beforeFirst || afterLast) {
        StoredRecord from = record;
        if (side(record.bytes) < 0) {
            const auto low = m_file->seek(key(), SeekOp::GreaterOrEqual, m_range->low, 1);
            if (low.empty())
                return std::nullopt;
            from = low.front();
        } else if (side(record.bytes) > 0) {
            startAtEnd();
            *restarted = true;
            return std::nullopt;
        }
        begin(from, m_places.placeOf(from));
        *restarted = true;
        return m_before;
    }
    if (m_ids.empty())
        return std::nullopt;
    return std::min(rowInKnown(record), m_before + static_cast<qint64>(m_ids.size()) - 1);
}

std::optional<qint64> ViewRows::nearest(const data::KeyValues& values, bool* restarted) {
    const auto found = m_file->seek(key(), SeekOp::GreaterOrEqual, values, 1);
    if (!found.empty())
        return rowOf(found.front(), restarted);
    if (!isCountExact()) {
        startAtEnd();
        *restarted = true;
    }
    return count() > 0 ? std::optional(count() - 1) : std::nullopt;
}

}  // namespace search
