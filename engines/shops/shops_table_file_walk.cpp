#include <algorithm>
#include <utility>

#include "data/record/record_codec.h"
#include "engines/shops/call_status.h"
#include "engines/shops/shops_table_file.h"

// Reading along a key.

namespace engines::shops {

namespace {

constexpr size_t kMaxLastRead = 1024;
constexpr int kMaxRepositions = 16;

bool isUnsupported(int status) {
    return status == kInvalidOperation || status == kWorkSpaceTooSmall ||
           status == kDescriptorIncorrect || status == kExtendedBufferTooSmall;
}

}  // namespace

int ShopsTableFile::valueCount(int key, const KeyValues& values) const {
    return static_cast<int>(
        std::min(values.size(), m_keys[static_cast<size_t>(key)].segments.size()));
}

// A record with the values of the key's leading fields. Fields may share bytes, but not within one
// key.
QByteArray ShopsTableFile::recordOf(int key, const KeyValues& values) const {
    QByteArray record(m_layout.recordLength(), '\0');
    const std::vector<KeySegment>& segments = m_keys[static_cast<size_t>(key)].segments;
    for (int i = 0; i < valueCount(key, values); ++i)
        writeValue(m_layout.field(segments[static_cast<size_t>(i)].fieldIndex),
                   reinterpret_cast<uchar*>(record.data()), values[static_cast<size_t>(i)],
                   m_layout.tableName());
    return record;
}

int ShopsTableFile::compare(int key, const QByteArray& record, const KeyValues& values) const {
    checkKey(key);
    return orderOf(key).compare(record, recordOf(key, values), valueCount(key, values));
}

int ShopsTableFile::move(int operation, int key, const QByteArray& keyBytes) {
    const int status = m_cursor->read(operation, keyBytes, key, m_current);
    if (status == kOk)
        m_current = whole(std::move(m_current));
    return status;
}

// Whether the operation found a record.
bool ShopsTableFile::found(int status) const {
    if (status == kKeyNotFound || status == kEndOfFile)
        return false;
    if (status != kOk)
        fail(status);
    return true;
}

std::vector<StoredRecord> ShopsTableFile::fromEnd(int key, Direction direction, int max) {
    checkKey(key);
    if (!found(move(direction == Direction::Forward ? kGetFirst : kGetLast, key)))
        return {};
    return readOn(key, direction, max, Position::Before, std::nullopt);
}

// Among records of equal value, "greater" finds the first and "less" the last. In a descending key
// both follow the key's order, not the values'.
std::vector<StoredRecord> ShopsTableFile::seek(int key, SeekOp op, const KeyValues& values,
                                               int max) {
    checkKey(key);
    const KeyOrder& order = orderOf(key);
    const int given = valueCount(key, values);
    const QByteArray wanted = recordOf(key, values);
    const auto low = [&] { return order.filled(wanted, given, false); };
    const auto high = [&] { return order.filled(wanted, given, true); };
    int status = kOk;
    Test belongs;
    Direction direction = Direction::Forward;
    switch (op) {
        case SeekOp::Equal:
            status =
                move(given == order.segmentCount() ? kGetEqual : kGetGreaterOrEqual, key, low());
            belongs = [&](const QByteArray& record) {
                return order.compare(record, wanted, given) == 0;
            };
            break;
        case SeekOp::GreaterOrEqual:
            status = move(kGetGreaterOrEqual, key, low());
            break;
        case SeekOp::Greater:
            status = move(kGetGreater, key, high());
            break;
        case SeekOp::LessOrEqual:
            status = move(kGetLessOrEqual, key, high());
            direction = Direction::Backward;
            break;
        case SeekOp::Less:
            status = move(kGetLess, key, low());
            direction = Direction::Backward;
            break;
    }
    if (!found(status))
        return {};
    return readOn(key, direction, max, Position::Before, std::nullopt, belongs);
}

std::vector<StoredRecord> ShopsTableFile::next(int key, const StoredRecord& from,
                                               Direction direction, int max) {
    checkKey(key);
    const Position position =
        positionOn(key, from) ? Position::On : positionBeside(key, from, direction);
    return readOn(key, direction, max, position, from);
}

// Positions the cursor on a record if it is still at that position of the key.
bool ShopsTableFile::positionOn(int key, const StoredRecord& record) {
    QByteArray stored;
    const int status = m_cursor->direct(record.id, key, stored);
    if (status == kInvalidRecordAddress || status == kInvalidKeyPath || !found(status))
        return false;
    const KeyOrder& order = orderOf(key);
    m_current = whole(std::move(stored));
    return order.compare(m_current, record.bytes, order.segmentCount()) == 0;
}

// Positions the cursor to continue from a record that is no longer there.
ShopsTableFile::Position ShopsTableFile::positionBeside(int key, const StoredRecord& from,
                                                        Direction direction) {
    const KeyOrder& order = orderOf(key);
    if (order.stat().duplicates && !order.stat().byAddress) {
        if (const std::optional<Position> position = positionByNeighbours(key, from, direction))
            return *position;
    }
    const bool forward = direction == Direction::Forward;
    int status = move(forward ? kGetGreaterOrEqual : kGetLessOrEqual, key, order.keyOf(from.bytes));
    while (found(status)) {
        if (order.compare(m_current, from.bytes, order.segmentCount()) != 0)
            return Position::Before;
        RecordId id = 0;
        if (const int at = m_cursor->position(id); at != kOk)
            fail(at);
        if (forward ? id > from.id : id < from.id)
            return Position::Before;
        status = move(forward ? kGetNext : kGetPrevious, key);
    }
    return Position::Nowhere;
}

// The same for duplicates in insertion order: uses those read last that are still there. nullopt if
// there are none.
std::optional<ShopsTableFile::Position> ShopsTableFile::positionByNeighbours(
    int key, const StoredRecord& from, Direction direction) {
    if (m_lastReadKey != key)
        return std::nullopt;
    const auto place = std::find(m_lastRead.begin(), m_lastRead.end(), from.id);
    if (place == m_lastRead.end())
        return std::nullopt;
    const auto isInPlace = [&](RecordId id) { return positionOn(key, {id, from.bytes}); };
    const auto later = std::find_if(place + 1, m_lastRead.end(), isInPlace);
    const bool forward = direction == Direction::Forward;
    if (forward && later != m_lastRead.end())
        return Position::Before;
    const auto earlier =
        std::find_if(std::make_reverse_iterator(place), m_lastRead.rend(), isInPlace);
    if (earlier != m_lastRead.rend())
        return forward ? Position::On : Position::Before;
    if (!forward && later != m_lastRead.end() && isInPlace(*later))
        return Position::On;
    return std::nullopt;
}

// Reads up to `max` records from the cursor. `from`: the record at or next to the cursor; the first
// record that fails `belongs` ends the result.
std::vector<StoredRecord> ShopsTableFile::readOn(int key, Direction direction, int max,
                                                 Position position,
                                                 std::optional<StoredRecord> from,
                                                 const Test& belongs) {
    Records records;
    int replacings = 0;
    while (position != Position::Nowhere && static_cast<int>(records.size()) < max) {
        const int status = readSome(key, direction, position == Position::Before,
                                    max - static_cast<int>(records.size()), records);
        if (belongs && !records.empty() && !belongs(records.back().bytes)) {
            records.erase(
                std::find_if_not(records.begin(), records.end(),
                                 [&](const StoredRecord& record) { return belongs(record.bytes); }),
                records.end());
            break;
        }
        position = Position::On;
        if (status == kLostPosition && ++replacings <= kMaxRepositions) {
            // Another session removed or moved the cursor's record.
            if (!records.empty())
                from = records.back();
            if (!from)
                fail(status);
            if (!positionOn(key, *from))
                position = positionBeside(key, *from, direction);
        } else if (!found(status)) {
            break;
        }
    }
    rememberRead(key, direction, from ? from->id : 0, records);
    return records;
}

// Reads several records in one call, or a single record if the engine does not support that.
int ShopsTableFile::readSome(int key, Direction direction, bool withCurrent, int wanted,
                             Records& records) {
    const bool forward = direction == Direction::Forward;
    if (m_readsMany && wanted > (withCurrent ? 1 : 0)) {
        const size_t before = records.size();
        const int status = m_cursor->readMany(
            direction, key, withCurrent,
            std::min(wanted, FileCursor::maxRecordsPerCall(m_fixedLength)), m_fixedLength, records);
        if (status == kRejectCountReached || status == kFilterLimitReached)
            return records.size() > before ? kOk : kEndOfFile;
        if (status == kOk && records.size() == before)
            return kEndOfFile;
        if (!isUnsupported(status))
            return status;
        m_readsMany = false;
    }
    if (!withCurrent) {
        if (const int status = move(forward ? kGetNext : kGetPrevious, key); status != kOk)
            return status;
    }
    StoredRecord record{0, m_current};
    if (const int at = m_cursor->position(record.id); at != kOk)
        return at;
    records.push_back(std::move(record));
    return kOk;
}

void ShopsTableFile::rememberRead(int key, Direction direction, RecordId from,
                                  const Records& records) {
    const bool forward = direction == Direction::Forward;
    const bool continues = m_lastReadKey == key && !m_lastRead.empty() && from != 0 &&
                           (forward ? m_lastRead.back() : m_lastRead.front()) == from;
    if (!continues) {
        m_lastReadKey = key;
        m_lastRead.clear();
        if (from != 0)
            m_lastRead.push_back(from);
    }
    for (const StoredRecord& record : records) {
        if (forward)
            m_lastRead.push_back(record.id);
        else
            m_lastRead.push_front(record.id);
    }
    while (m_lastRead.size() > kMaxLastRead) {
        if (forward)
            m_lastRead.pop_front();
        else
            m_lastRead.pop_back();
    }
}

}  // namespace engines::shops
