#include "tests/support/fake_client/fake_cursor.h"

#include <QtEndian>
#include <algorithm>
#include <cstring>
#include <thread>
#include <utility>

#include "data/windows1252.h"

namespace fake {

using namespace data;

namespace {

// Statuses.
constexpr int kOk = 0;
constexpr int kInvalidOperation = 1;
constexpr int kKeyNotFound = 4;
constexpr int kInvalidKeyNumber = 6;
constexpr int kDifferentKey = 7;
constexpr int kInvalidPositioning = 8;
constexpr int kEndOfFile = 9;
constexpr int kDataBufferTooShort = 22;
constexpr int kInvalidAddress = 43;
constexpr int kDescriptorIncorrect = 62;
constexpr int kConflict = 80;
constexpr int kLockError = 81;
constexpr int kLostPosition = 82;
constexpr int kIncompatibleLock = 93;
constexpr int kSessionLost = 95;
constexpr int kRecordLocked = 84;

constexpr int kLockBiasStep = 100;
constexpr std::chrono::seconds kLongWait{30};

// Key flags of a file's description.
constexpr int kDuplicates = 0x01;
constexpr int kModifiable = 0x02;
constexpr int kSegmented = 0x10;
constexpr int kCollated = 0x20;
constexpr int kDescending = 0x40;
constexpr int kRepeatingDuplicates = 0x80;
constexpr int kExtendedType = 0x100;

int put(const QByteArray& bytes, CallBuffers& buffers) {
    const bool fits = static_cast<qsizetype>(*buffers.dataLength) >= bytes.size();
    const qsizetype length = std::min<qsizetype>(bytes.size(), *buffers.dataLength);
    std::memcpy(buffers.data, bytes.constData(), static_cast<size_t>(length));
    *buffers.dataLength = static_cast<quint32>(length);
    return fits ? kOk : kDataBufferTooShort;
}

void append(QByteArray& bytes, qint64 value, int size) {
    for (int i = 0; i < size; ++i)
        bytes.append(static_cast<char>(value >> (8 * i)));
}
void word(QByteArray& bytes, int value) {
    append(bytes, value, 2);
}
void doubleWord(QByteArray& bytes, qint64 value) {
    append(bytes, value, 4);
}

}  // namespace

FakeCursor::FakeCursor(std::shared_ptr<engines::embedded::Connection> connection,
                       engines::embedded::StoredTable& table, Quirks quirks)
    : m_connection(std::move(connection)),
      m_table(table),
      m_file(m_connection, table),
      m_quirks(std::move(quirks)) {
    if (const auto& taker = m_quirks.taker)
        m_taker = std::make_unique<engines::embedded::EmbeddedTableFile>(
            taker, taker->table(table.name()));
}

int FakeCursor::run(int operation, CallBuffers& buffers, int key) {
    const int bias = operation / kLockBiasStep * kLockBiasStep;
    switch (operation % kLockBiasStep) {
        // clang-format off
        case 2: return insert(buffers, key);
        case 3: return update(buffers);
        case 4: return remove();
        case 5: case 8: case 9: case 10: case 11: return seek(operation, buffers, key);
        case 6: case 7: case 12: case 13: return walk(operation, buffers, key);
        case 15: return stat(buffers);
        case 22: return givePosition(buffers);
        case 23: return direct(buffers, key, bias);
        case 24: return step(false, buffers);
        case 27: return unlock(buffers, key);
        case 33: return step(true, buffers);
        case 36: return readMany(Direction::Forward, buffers, key);
        case 37: return readMany(Direction::Backward, buffers, key);
        default: return kInvalidOperation;
            // clang-format on
    }
}

QByteArray FakeCursor::keyBytes(const QByteArray& record, int key) const {
    QByteArray bytes;
    for (const KeySegment& segment : m_table.keys()[static_cast<size_t>(key)].segments) {
        const TFieldCacheItem& field = m_table.layout().field(segment.fieldIndex);
        bytes += record.mid(field.offset, field.storedLength);
    }
    return bytes;
}

QByteArray FakeCursor::recordOf(const char* keyBuffer, int key) const {
    QByteArray record(m_table.layout().recordLength(), '\0');
    for (const KeySegment& segment : m_table.keys()[static_cast<size_t>(key)].segments) {
        const TFieldCacheItem& field = m_table.layout().field(segment.fieldIndex);
        std::memcpy(record.data() + field.offset, keyBuffer, field.storedLength);
        keyBuffer += field.storedLength;
    }
    return record;
}

int FakeCursor::lockRecord(RecordId id, int bias) {
    if (bias == 0)
        return kOk;
    const bool single = bias <= 200;
    const bool waits = bias % 200 != 0;
    if (single ? !m_locks.empty() : m_singleLock.has_value())
        return kIncompatibleLock;
    if (!m_file.lock(id, waits ? kLongWait : std::chrono::seconds(0)))
        return kRecordLocked;
    if (!single) {
        m_locks.insert(id);
        return kOk;
    }
    if (m_singleLock)
        m_file.unlock(*m_singleLock);
    m_singleLock = id;
    return kOk;
}

int FakeCursor::give(std::optional<StoredRecord> record, int key, CallBuffers& buffers, int bias) {
    if (!record)
        return kEndOfFile;
    if (const int status = lockRecord(record->id, bias); status != kOk)
        return status;
    if (bias != 0)  // as it is under the lock
        record = m_file.get(record->id);
    if (!record)
        return kInvalidAddress;
    m_current = std::move(record);
    m_currentKey = key;
    m_physical = m_current->id;
    if (key >= 0) {
        const QByteArray bytes = keyBytes(m_current->bytes, key);
        std::memcpy(
            buffers.key, bytes.constData(),
            std::min(static_cast<size_t>(bytes.size()), static_cast<size_t>(buffers.keyLength)));
    }
    return put(m_current->bytes, buffers);
}

int FakeCursor::seek(int operation, CallBuffers& buffers, int key) {
    if (key < 0 || key >= static_cast<int>(m_table.keys().size()))
        return kInvalidKeyNumber;
    const engines::embedded::KeyImage& images = m_table.image(key);
    const QByteArray image = images.build(recordOf(buffers.key, key));
    const QByteArray& top = m_table.topImage(key);
    QByteArray above = engines::embedded::successor(image);
    if (above.isEmpty())
        above = top;
    const int kind = operation % kLockBiasStep;
    const bool backward = kind == 10 || kind == 11;
    QByteArray low;
    QByteArray high = top;
    if (kind == 5 || kind == 9)
        low = image;
    else if (kind == 8)
        low = above;
    else
        high = kind == 10 ? image : above;
    std::optional<StoredRecord> found;
    {
        engines::embedded::StatementLease rows = m_table.scan(
            {key, engines::embedded::ScanShape::Bounds::Range, backward, false, true, false});
        rows->bind(1, low);
        rows->bind(2, high);
        rows->bind(3, 1);
        if (rows->step())
            found = StoredRecord{rows->integer(0), rows->blob(1).toByteArray()};
    }
    if (kind == 5 && (!found || images.build(found->bytes) != image))
        return kKeyNotFound;
    return give(std::move(found), key, buffers, operation / kLockBiasStep * kLockBiasStep);
}

// Another session removed the current record or moved it in the key.
bool FakeCursor::isLost() const {
    const std::optional<StoredRecord> stored = m_file.get(m_current->id);
    return !stored ||
           keyBytes(stored->bytes, m_currentKey) != keyBytes(m_current->bytes, m_currentKey);
}

int FakeCursor::walk(int operation, CallBuffers& buffers, int key) {
    if (key < 0 || key >= static_cast<int>(m_table.keys().size()))
        return kInvalidKeyNumber;
    const int kind = operation % kLockBiasStep;
    std::vector<StoredRecord> found;
    if (kind == 12 || kind == 13) {
        found = m_file.fromEnd(key, kind == 12 ? Direction::Forward : Direction::Backward, 1);
    } else {
        if (!m_current || m_currentKey < 0)
            return kInvalidPositioning;
        if (key != m_currentKey)
            return kDifferentKey;
        if (isLost())
            return kLostPosition;
        found =
            m_file.next(key, *m_current, kind == 6 ? Direction::Forward : Direction::Backward, 1);
    }
    return give(found.empty() ? std::nullopt : std::optional(found.front()), key, buffers,
                operation / kLockBiasStep * kLockBiasStep);
}

int FakeCursor::step(bool first, CallBuffers& buffers) {
    if (!first && !m_physical)
        return kInvalidPositioning;
    std::optional<StoredRecord> found;
    m_file.visitStored(first ? std::nullopt : m_physical, 1,
                       [&found](RecordId id, const QByteArray& bytes) {
                           found = StoredRecord{id, QByteArray(bytes.constData(), bytes.size())};
                           return true;
                       });
    return give(std::move(found), -1, buffers, 0);
}

int FakeCursor::direct(CallBuffers& buffers, int key, int bias) {
    if (*buffers.dataLength < 4)
        return kDataBufferTooShort;
    if (key >= static_cast<int>(m_table.keys().size()))
        return kInvalidKeyNumber;
    std::optional<StoredRecord> record = m_file.get(qFromLittleEndian<quint32>(buffers.data));
    return record ? give(std::move(record), key, buffers, bias) : kInvalidAddress;
}

int FakeCursor::readMany(Direction direction, CallBuffers& buffers, int key) {
    constexpr quint32 kRequest = 16;
    if (m_quirks.plain)
        return kInvalidOperation;
    if (key < 0 || key >= static_cast<int>(m_table.keys().size()))
        return kInvalidKeyNumber;
    if (!m_current || m_currentKey != key)
        return kInvalidPositioning;
    const quint32 room = *buffers.dataLength;
    if (room < kRequest || qFromLittleEndian<quint16>(buffers.data) != kRequest ||
        qFromLittleEndian<quint16>(buffers.data + 6) != 0 ||
        qFromLittleEndian<quint16>(buffers.data + 10) != 1)
        return kDescriptorIncorrect;
    const QByteArray begin(buffers.data + 2, 2);
    const int wanted = qFromLittleEndian<quint16>(buffers.data + 8);
    const int length = qFromLittleEndian<quint16>(buffers.data + 12);
    const int offset = qFromLittleEndian<quint16>(buffers.data + 14);
    if ((begin != "EG" && begin != "UC") || offset + length > m_table.layout().recordLength())
        return kDescriptorIncorrect;
    if (isLost())
        return kLostPosition;
    std::vector<StoredRecord> found;
    if (begin == "UC")
        found.push_back(*m_current);
    for (StoredRecord& record :
         m_file.next(key, *m_current, direction, wanted - static_cast<int>(found.size())))
        found.push_back(std::move(record));
    QByteArray answer;
    word(answer, static_cast<int>(found.size()));
    for (const StoredRecord& record : found) {
        word(answer, length);
        doubleWord(answer, record.id);
        answer += record.bytes.mid(offset, length);
    }
    if (static_cast<quint32>(answer.size()) > room)
        return kDataBufferTooShort;
    if (!found.empty())
        m_current = found.back();
    if (m_quirks.cut)
        answer.chop(1);
    put(answer, buffers);
    return static_cast<int>(found.size()) < wanted ? kEndOfFile : kOk;
}

int FakeCursor::insert(CallBuffers& buffers, int key) {
    if (*buffers.dataLength != static_cast<quint32>(m_table.layout().recordLength()))
        return kDataBufferTooShort;
    QByteArray bytes(buffers.data, *buffers.dataLength);
    const RecordId id = m_file.insert(bytes);
    m_current = StoredRecord{id, bytes};
    m_currentKey = key;
    m_physical = id;
    return kOk;
}

int FakeCursor::update(CallBuffers& buffers) {
    if (!m_current)
        return kInvalidPositioning;
    if (*buffers.dataLength != static_cast<quint32>(m_table.layout().recordLength()))
        return kDataBufferTooShort;
    const std::optional<StoredRecord> stored = m_file.get(m_current->id);
    if (!stored || stored->bytes != m_current->bytes)
        return kConflict;
    const QByteArray bytes(buffers.data, *buffers.dataLength);
    m_file.update(m_current->id, bytes);
    m_current->bytes = bytes;
    if (m_singleLock == m_current->id) {
        m_file.unlock(*m_singleLock);
        m_singleLock.reset();
    }
    return kOk;
}

int FakeCursor::remove() {
    if (!m_current)
        return kInvalidPositioning;
    const std::optional<StoredRecord> stored = m_file.get(m_current->id);
    if (!stored || stored->bytes != m_current->bytes)
        return kConflict;
    m_file.remove(m_current->id);
    return kOk;
}

void FakeCursor::unlock(RecordId id) {
    m_file.unlock(id);
    if (m_taker)
        m_taker->lock(id, std::chrono::milliseconds(0));
}

int FakeCursor::unlock(CallBuffers& buffers, int key) {
    if (m_quirks.stuck)
        return kSessionLost;
    if (key >= 0) {  // the single lock
        if (!m_singleLock)
            return kLockError;
        unlock(*m_singleLock);
        m_singleLock.reset();
        return kOk;
    }
    if (key == -1) {
        if (*buffers.dataLength < 4)
            return kDataBufferTooShort;
        const auto held = m_locks.find(qFromLittleEndian<quint32>(buffers.data));
        if (held == m_locks.end())
            return kLockError;
        unlock(*held);
        m_locks.erase(held);
        return kOk;
    }
    for (const RecordId id : m_locks)
        unlock(id);
    m_locks.clear();
    return kOk;
}

int FakeCursor::givePosition(CallBuffers& buffers) {
    if (!m_current)
        return kInvalidPositioning;
    QByteArray bytes;
    doubleWord(bytes, m_current->id);
    return put(bytes, buffers);
}

int FakeCursor::stat(CallBuffers& buffers) {
    const RecordLayout& layout = m_table.layout();
    const auto records = m_file.recordCount();
    QByteArray bytes;
    word(bytes, layout.recordLength() - (m_quirks.shortRecord ? 1 : 0));
    word(bytes, 4096);
    word(bytes, static_cast<int>(m_table.keys().size()));
    doubleWord(bytes, records);
    word(bytes, 0);
    doubleWord(bytes, 0);
    bool collated = false;
    for (const KeyDef& key : m_table.keys()) {
        for (size_t i = 0; i < key.segments.size(); ++i) {
            const KeySegment& segment = key.segments[i];
            const TFieldCacheItem& field = layout.field(segment.fieldIndex);
            // The engine's own types know no dates in doubles.
            const Storage type =
                field.storage == Storage::DateDouble ? Storage::Float : field.storage;
            const bool moved = m_quirks.movedKey && key.number == 0;
            word(bytes, field.offset + 1 + (moved ? 1 : 0));
            word(bytes, field.storedLength - (moved ? 1 : 0));
            word(bytes, kModifiable | kExtendedType | (key.unique ? 0 : kDuplicates) |
                            (key.unique || m_quirks.linked ? 0 : kRepeatingDuplicates) |
                            (i + 1 < key.segments.size() ? kSegmented : 0) |
                            (segment.ignoreCase ? kCollated : 0) |
                            (segment.descending ? kDescending : 0));
            doubleWord(bytes, records);
            bytes.append(static_cast<char>(type));
            bytes.append(QByteArray(3, '\0'));
            bytes.append(static_cast<char>(key.number));
            bytes.append('\0');
            collated = collated || segment.ignoreCase;
        }
    }
    if (collated) {
        bytes.append('\xAC');
        bytes.append("NOCASE  ", 8);
        for (int c = 0; c < 256; ++c)
            bytes.append(static_cast<char>(kCaseFoldWeight[static_cast<size_t>(c)]));
    }
    return put(bytes, buffers);
}

}  // namespace fake
