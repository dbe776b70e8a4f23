#include "data/table/key_view.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace data {

namespace {

// Records per call: one for a single lookup, more as a walk continues. Views with a range or test
// start at the second size: they are short or skip many records.
constexpr std::array<int, 4> kBatchSizes{1, 16, 64, 256};
constexpr int kPlainLevels = 3;  // a walk without a test stops growing here

}  // namespace

KeyView::KeyView(TableFile& file, const KeyDef& key) : m_file(file), m_key(&key) {}

void KeyView::setKey(const KeyDef& key) {
    m_key = &key;
    m_range.reset();
    forget();
}

void KeyView::setRange(std::optional<Range> range) {
    m_range = std::move(range);
    forget();
}

void KeyView::setAccept(Accept accept) {
    m_accept = std::move(accept);
    forget();
}

void KeyView::forget() {
    m_anchor.reset();
    m_ahead.clear();
    m_aheadAt = 0;
    m_ended = false;
    m_level = 0;
}

std::optional<StoredRecord> KeyView::first() {
    forget();
    const int asked = nextSize();
    if (!m_range || m_range->low.empty())
        return begin(m_file.fromEnd(m_key->number, Direction::Forward, asked), asked,
                     Direction::Forward);
    const SeekOp op = m_range->low == m_range->high ? SeekOp::Equal : SeekOp::GreaterOrEqual;
    return begin(m_file.seek(m_key->number, op, m_range->low, asked), asked, Direction::Forward);
}

std::optional<StoredRecord> KeyView::last() {
    forget();
    const int asked = nextSize();
    if (!m_range || m_range->high.empty())
        return begin(m_file.fromEnd(m_key->number, Direction::Backward, asked), asked,
                     Direction::Backward);
    return begin(m_file.seek(m_key->number, SeekOp::LessOrEqual, m_range->high, asked), asked,
                 Direction::Backward);
}

std::optional<StoredRecord> KeyView::step(const StoredRecord& from, Direction direction) {
    if (m_direction != direction || !m_anchor || !isSamePlace(from)) {
        forget();
        // A record posted outside the range: the view begins after it.
        if (direction == Direction::Forward && isBefore(from))
            return first();
        if (direction == Direction::Backward && isAfter(from))
            return last();
        m_direction = direction;
        m_anchor = from;
    }
    return scan();
}

std::optional<StoredRecord> KeyView::find(const KeyValues& values) {
    forget();
    const int asked = nextSize();
    std::optional<StoredRecord> found =
        begin(seekFrom(values, SeekOp::Equal, asked), asked, Direction::Forward, &values);
    // A search for equal keys does not end at the end of the view.
    m_ahead.clear();
    m_aheadAt = 0;
    m_ended = false;
    return found;
}

std::optional<StoredRecord> KeyView::findNearest(const KeyValues& values) {
    forget();
    const int asked = nextSize();
    return begin(seekFrom(values, SeekOp::GreaterOrEqual, asked), asked, Direction::Forward);
}

bool KeyView::contains(const StoredRecord& record) const {
    return !isBefore(record) && !isAfter(record) && (!m_accept || m_accept(record));
}

int KeyView::compare(const StoredRecord& record, const KeyValues& values) const {
    return values.empty() ? 0 : m_file.compare(m_key->number, record.bytes, values);
}

bool KeyView::isBefore(const StoredRecord& record) const {
    return m_range && compare(record, m_range->low) < 0;
}

bool KeyView::isAfter(const StoredRecord& record) const {
    return m_range && compare(record, m_range->high) > 0;
}

int KeyView::nextSize() {
    if (m_level == 0 && (m_range || m_accept))
        m_level = 1;
    const int levels = m_accept ? static_cast<int>(kBatchSizes.size()) : kPlainLevels;
    const int size = kBatchSizes[static_cast<size_t>(std::min(m_level, levels - 1))];
    ++m_level;
    return size;
}

// Seeks by values, but not to before the range.
std::vector<StoredRecord> KeyView::seekFrom(const KeyValues& values, SeekOp op, int asked) {
    if (values.empty())
        return m_range && !m_range->low.empty()
                   ? m_file.seek(m_key->number, SeekOp::GreaterOrEqual, m_range->low, asked)
                   : m_file.fromEnd(m_key->number, Direction::Forward, asked);
    std::vector<StoredRecord> batch = m_file.seek(m_key->number, op, values, asked);
    if (!batch.empty() && isBefore(batch.front()))
        batch = m_file.seek(m_key->number, SeekOp::GreaterOrEqual, m_range->low, asked);
    return batch;
}

std::optional<StoredRecord> KeyView::begin(std::vector<StoredRecord> batch, int asked,
                                           Direction direction, const KeyValues* only) {
    m_direction = direction;
    fetch(std::move(batch), asked);
    return scan(only);
}

void KeyView::fetch(std::vector<StoredRecord> batch, int asked) {
    m_ended = static_cast<int>(batch.size()) < asked;
    m_ahead = std::move(batch);
    m_aheadAt = 0;
}

// The next accepted record, from those read ahead and then from the table; it becomes the anchor.
// With `only`, ends where the leading key fields differ from these values.
std::optional<StoredRecord> KeyView::scan(const KeyValues* only) {
    StoredRecord last = m_anchor.value_or(StoredRecord{});
    try {
        for (;;) {
            while (m_aheadAt < m_ahead.size()) {
                last = std::move(m_ahead[m_aheadAt++]);
                const bool isOutside =
                    m_direction == Direction::Forward ? isAfter(last) : isBefore(last);
                if (isOutside || (only != nullptr && compare(last, *only) != 0)) {
                    forget();
                    return std::nullopt;
                }
                if (!m_accept || m_accept(last)) {
                    m_anchor = last;
                    return last;
                }
            }
            if (m_ended) {
                forget();
                return std::nullopt;
            }
            const int asked = nextSize();
            fetch(m_file.next(m_key->number, last, m_direction, asked), asked);
        }
    } catch (...) {
        forget();
        throw;
    }
}

bool KeyView::isSamePlace(const StoredRecord& record) const {
    if (record.id != m_anchor->id)
        return false;
    if (record.bytes.constData() == m_anchor->bytes.constData())
        return true;
    return std::all_of(m_key->segments.begin(), m_key->segments.end(), [&](const KeySegment& s) {
        const TFieldCacheItem& field = m_file.layout().field(s.fieldIndex);
        return std::memcmp(record.bytes.constData() + field.offset,
                           m_anchor->bytes.constData() + field.offset, field.storedLength) == 0;
    });
}

}  // namespace data
