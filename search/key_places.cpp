#include "search/key_places.h"

#include <algorithm>

#include "data/record/record_codec.h"

namespace search {

using data::Direction;
using data::StoredRecord;

void KeyPlaces::reset(int key) {
    m_key = key;
    m_known.clear();
    m_complete = false;
    m_count = m_file->recordCount();
}

bool KeyPlaces::learn() {
    if (m_complete)
        return false;
    std::optional<StoredRecord> found;
    if (m_known.empty()) {
        found = m_file->skip(m_key, std::nullopt, Direction::Forward, 1);
    } else if (static_cast<qint64>(m_known.size()) * kStep < m_count) {
        found = m_file->skip(m_key, m_known.back(), Direction::Forward, kStep);
    }
    m_complete = !found;
    if (found)
        m_known.push_back(std::move(*found));
    return !m_complete;
}

std::optional<StoredRecord> KeyPlaces::at(qint64 place) {
    if (place < 0 || place >= m_count)
        return std::nullopt;
    if (m_known.empty() && !learn())
        return std::nullopt;
    const qint64 nearest = std::min(place / kStep, static_cast<qint64>(m_known.size()) - 1);
    const qint64 ahead = place - nearest * kStep;
    if (ahead == 0)
        return m_known[static_cast<size_t>(nearest)];
    const qint64 fromEnd = m_count - place;
    if (fromEnd < ahead) {
        return m_file->skip(m_key, std::nullopt, Direction::Backward, fromEnd);
    }
    return m_file->skip(m_key, m_known[static_cast<size_t>(nearest)], Direction::Forward, ahead);
}

qint64 KeyPlaces::placeOf(const StoredRecord& record) {
    const auto above = std::upper_bound(
        m_known.begin(), m_known.end(), record,
        [this](const StoredRecord& a, const StoredRecord& b) { return compare(a, b) < 0; });
    if (above == m_known.begin())
        return m_known.empty() ? m_file->countBetween(m_key, std::nullopt, record) : 0;
    const qint64 known = above - m_known.begin() - 1;
    return known * kStep + m_file->countBetween(m_key, m_known[static_cast<size_t>(known)], record);
}

data::KeyValues KeyPlaces::keyValues(const StoredRecord& record) const {
    data::KeyValues values;
    for (const data::KeySegment& segment : m_file->keys()[static_cast<size_t>(m_key)].segments)
        values.push_back(data::readValue(m_file->layout().field(segment.fieldIndex),
                                         reinterpret_cast<const uchar*>(record.bytes.constData())));
    return values;
}

int KeyPlaces::compare(const StoredRecord& a, const StoredRecord& b) const {
    const int order = m_file->compare(m_key, a.bytes, keyValues(b));
    if (order != 0)
        return order;
    return a.id < b.id ? -1 : (a.id > b.id ? 1 : 0);
}

}  // namespace search
