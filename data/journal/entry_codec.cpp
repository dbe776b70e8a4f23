#include "data/journal/entry_codec.h"

#include <QCryptographicHash>
#include <algorithm>
#include <cstring>

namespace data {

namespace {

enum EntryKind : char { kUpdate = 'u', kInsert = 'i', kDelete = 'd', kMark = 'm' };

constexpr qsizetype kChecksumLength = 4;
constexpr qsizetype kFingerprintLength = 8;
constexpr qint64 kTablePlace = -1;  // tables count down from here, entries up from 1
constexpr quint64 kMaxRecordLength = 1 << 20;

QByteArray checksum(const QByteArray& place, QByteArrayView bytes) {
    QCryptographicHash hash(QCryptographicHash::Md5);
    hash.addData(place);
    hash.addData(bytes);
    return hash.result().left(kChecksumLength);
}

QByteArray placeOf(qint64 run, qint64 seq) {
    return QByteArray::number(run) + '/' + QByteArray::number(seq) + '/';
}

void putNumber(QByteArray& out, quint64 number) {
    while (number >= 0x80) {
        out += static_cast<char>(number | 0x80);
        number >>= 7;
    }
    out += static_cast<char>(number);
}

void putBytes(QByteArray& out, const QByteArray& bytes) {
    putNumber(out, static_cast<quint64>(bytes.size()));
    out += bytes;
}

/// Reads an entry's bytes; throws past their end.
class Reader {
  public:
    Reader(QByteArrayView bytes, qint64 run, qint64 seq) : m_bytes(bytes), m_run(run), m_seq(seq) {}

    bool atEnd() const { return m_at == m_bytes.size(); }

    quint64 number() {
        quint64 value = 0;
        for (int shift = 0; shift < 64; shift += 7) {
            const auto byte = static_cast<uchar>(take(1)[0]);
            value |= static_cast<quint64>(byte & 0x7F) << shift;
            if ((byte & 0x80) == 0)
                return value;
        }
        fail();
    }

    int length() {
        const quint64 value = number();
        if (value > kMaxRecordLength)
            fail();
        return static_cast<int>(value);
    }

    QByteArray bytes(qsizetype length) { return take(length).toByteArray(); }
    QByteArray bytes() { return bytes(length()); }
    QByteArray rest() { return bytes(m_bytes.size() - m_at); }

    [[noreturn]] void fail() const {
        throw DataError(
            ErrorKind::Damaged, QStringLiteral("run journal"),
            QStringLiteral("run %1, entry %2 is not as it was written").arg(m_run).arg(m_seq))
            .inFinnish(QStringLiteral("ajopäiväkirjan ajo %1, merkintä %2 on vioittunut")
                           .arg(m_run)
                           .arg(m_seq));
    }

  private:
    QByteArrayView take(qsizetype length) {
        if (length > m_bytes.size() - m_at)
            fail();
        const QByteArrayView taken = m_bytes.sliced(m_at, length);
        m_at += length;
        return taken;
    }

    QByteArrayView m_bytes;
    qsizetype m_at = 0;
    qint64 m_run;
    qint64 m_seq;
};

/// Reads the bytes before the check sum. @throws DataError(Damaged) if it does not match.
Reader checkedReader(QByteArrayView bytes, qint64 run, qint64 seq) {
    const qsizetype end = std::max<qsizetype>(bytes.size() - kChecksumLength, 0);
    const Reader reader(bytes.first(end), run, seq);
    if (end == 0 || bytes.sliced(end) != checksum(placeOf(run, seq), bytes.first(end)))
        reader.fail();
    return reader;
}

bool isZero(const char* bytes, int length) {
    return std::all_of(bytes, bytes + length, [](char byte) { return byte == 0; });
}

}  // namespace

RecordDifference::RecordDifference(const RecordLayout& layout, const std::vector<KeyDef>& keys) {
    const int length = layout.recordLength();
    // Bytes that belong together: a field's, and those of all fields that share some of them.
    std::vector<bool> joined(static_cast<size_t>(length) + 1, false);  // with the byte before
    std::vector<bool> covered(static_cast<size_t>(length), false);
    for (const TFieldCacheItem& field : layout.fields()) {
        for (int i = field.offset; i < field.offset + field.storedLength; ++i) {
            covered[static_cast<size_t>(i)] = true;
            if (i > field.offset)
                joined[static_cast<size_t>(i)] = true;
        }
    }
    for (int i = 1; i < length; ++i) {
        const auto at = static_cast<size_t>(i);
        if (!covered[at] && !covered[at - 1])
            joined[at] = true;
    }
    for (int i = 0; i < length; ++i) {
        if (!joined[static_cast<size_t>(i)])
            m_places.push_back({i, 0});
        ++m_places.back().length;
    }
    if (!keys.empty()) {
        for (const KeySegment& segment : keys.front().segments) {
            const TFieldCacheItem& field = layout.field(segment.fieldIndex);
            m_keyPlaces.push_back({field.offset, field.storedLength});
        }
    }
}

std::vector<ByteChange> RecordDifference::between(const QByteArray& before,
                                                  const QByteArray& after) const {
    std::vector<ByteChange> changes;
    for (const Place& place : m_places) {
        if (std::memcmp(before.constData() + place.offset, after.constData() + place.offset,
                        static_cast<size_t>(place.length)) == 0)
            continue;
        const QByteArray old = before.mid(place.offset, place.length);
        const QByteArray now = after.mid(place.offset, place.length);
        if (!changes.empty() &&
            changes.back().offset + changes.back().before.size() == place.offset) {
            changes.back().before += old;
            changes.back().after += now;
        } else {
            changes.push_back({place.offset, old, now});
        }
    }
    return changes;
}

std::vector<ByteChange> RecordDifference::ofInsert(const QByteArray& after) const {
    std::vector<ByteChange> changes;
    for (const Place& place : m_places) {
        if (!isZero(after.constData() + place.offset, place.length))
            changes.push_back({place.offset, {}, after.mid(place.offset, place.length)});
    }
    return changes;
}

std::vector<ByteChange> RecordDifference::ofDelete(const QByteArray& before) const {
    std::vector<ByteChange> changes = ofInsert(before);
    for (ByteChange& change : changes)
        std::swap(change.before, change.after);
    return changes;
}

QByteArray RecordDifference::key(const QByteArray& record) const {
    QByteArray key;
    for (const Place& place : m_keyPlaces)
        key += QByteArrayView(record).sliced(place.offset, place.length);
    while (key.endsWith('\0'))
        key.chop(1);
    return key;
}

QByteArray layoutFingerprint(const RecordLayout& layout, const std::vector<KeyDef>& keys) {
    QByteArray text = QByteArray::number(layout.recordLength());
    for (const TFieldCacheItem& field : layout.fields()) {
        text += ';' + field.name.toUpper().toUtf8();
        for (const int part : {int{field.offset}, int{field.storedLength}, int{field.mask},
                               static_cast<int>(field.storage), static_cast<int>(field.kind())})
            text += ',' + QByteArray::number(part);
    }
    if (!keys.empty()) {
        for (const KeySegment& segment : keys.front().segments)
            text += '/' + QByteArray::number(segment.fieldIndex);
    }
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).left(kFingerprintLength);
}

QByteArray encodeTable(const JournalTable& table, qint64 run, qint64 number) {
    QByteArray out;
    putBytes(out, table.name.toUtf8());
    putNumber(out, static_cast<quint64>(table.recordLength));
    putBytes(out, table.fingerprint);
    return out + checksum(placeOf(run, kTablePlace - number), out);
}

JournalTable decodeTable(QByteArrayView bytes, qint64 run, qint64 number) {
    Reader reader = checkedReader(bytes, run, kTablePlace - number);
    JournalTable table;
    table.name = QString::fromUtf8(reader.bytes());
    table.recordLength = reader.length();
    table.fingerprint = reader.bytes();
    return table;
}

QByteArray encodeEntry(const JournalEntry& entry, qint64 run, qint64 seq) {
    QByteArray out;
    if (entry.isMark) {
        out += kMark;
        out += entry.mark;
        return out + checksum(placeOf(run, seq), out);
    }
    const bool hasBefore = entry.operation != Operation::Insert;
    const bool hasAfter = entry.operation != Operation::Delete;
    out += !hasBefore ? kInsert : !hasAfter ? kDelete : kUpdate;
    putNumber(out, static_cast<quint64>(entry.table));
    putNumber(out, static_cast<quint64>(entry.record));
    putNumber(out, static_cast<quint64>(entry.origin));
    putBytes(out, entry.key);
    int end = 0;
    for (const ByteChange& change : entry.changes) {
        const qsizetype length = hasBefore ? change.before.size() : change.after.size();
        putNumber(out, static_cast<quint64>(change.offset - end));
        putNumber(out, static_cast<quint64>(length));
        if (hasBefore)
            out += change.before;
        if (hasAfter)
            out += change.after;
        end = change.offset + static_cast<int>(length);
    }
    return out + checksum(placeOf(run, seq), out);
}

JournalEntry decodeEntry(QByteArrayView bytes, qint64 run, qint64 seq) {
    Reader reader = checkedReader(bytes, run, seq);
    JournalEntry entry;
    entry.seq = seq;
    const char kind = reader.bytes(1)[0];
    switch (kind) {
        case kMark:
            entry.isMark = true;
            entry.mark = reader.rest();
            return entry;
        case kUpdate:
            entry.operation = Operation::Update;
            break;
        case kInsert:
            entry.operation = Operation::Insert;
            break;
        case kDelete:
            entry.operation = Operation::Delete;
            break;
        default:
            reader.fail();
    }
    entry.table = reader.length();
    entry.record = static_cast<RecordId>(reader.number());
    entry.origin = static_cast<qint64>(reader.number());
    entry.key = reader.bytes();
    int place = 0;
    while (!reader.atEnd()) {
        ByteChange change;
        change.offset = place + reader.length();
        const int length = reader.length();
        if (entry.operation != Operation::Insert)
            change.before = reader.bytes(length);
        if (entry.operation != Operation::Delete)
            change.after = reader.bytes(length);
        place = change.offset + length;
        entry.changes.push_back(std::move(change));
    }
    return entry;
}

QByteArray noteChecksum(qint64 run, const QString& name, const QByteArray& value) {
    return checksum(placeOf(run, 0) + name.toUtf8() + '/', value);
}

}  // namespace data
