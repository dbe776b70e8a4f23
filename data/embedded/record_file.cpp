#include "data/embedded/record_file.h"

#include <algorithm>
#include <cstring>

namespace data::embedded {

EmbeddedRecordFile::EmbeddedRecordFile(std::shared_ptr<Connection> connection, RecordTable& table)
    : m_connection(std::move(connection)), m_table(table) {}

EmbeddedRecordFile::~EmbeddedRecordFile() {
    for (const auto& [id, count] : m_locked) {
        for (int i = 0; i < count; ++i)
            m_connection->locks().release({m_table.number(), id});
    }
}

void EmbeddedRecordFile::checkKey(int key) const {
    if (key < 0 || key >= static_cast<int>(keys().size()))
        throw DataError(ErrorKind::NoSuchField, m_table.name(),
                        QStringLiteral("the table has no key %1").arg(key));
}

std::vector<StoredRecord> EmbeddedRecordFile::collect(StatementLease& rows, int max) const {
    std::vector<StoredRecord> records;
    while (static_cast<int>(records.size()) < max && rows->step())
        records.push_back({rows->integer(0), m_table.checked(rows->blob(1)).toByteArray()});
    return records;
}

std::vector<StoredRecord> EmbeddedRecordFile::range(int key, const QByteArray& low,
                                                    const QByteArray& high, Direction direction,
                                                    int max) {
    StatementLease rows = m_table.scan(
        {key, ScanShape::Bounds::Range, direction == Direction::Backward, false, true});
    rows->bind(1, low);
    rows->bind(2, high);
    rows->bind(3, max);
    return collect(rows, max);
}

std::vector<StoredRecord> EmbeddedRecordFile::fromEnd(int key, Direction direction, int max) {
    checkKey(key);
    StatementLease rows =
        m_table.scan({key, ScanShape::Bounds::None, direction == Direction::Backward, false, true});
    rows->bind(3, max);
    return collect(rows, max);
}

std::vector<StoredRecord> EmbeddedRecordFile::seek(int key, SeekOp op, const KeyValues& values,
                                                   int max) {
    checkKey(key);
    const QByteArray prefix = m_table.image(key).prefix(values);
    const QByteArray& top = m_table.topImage(key);
    QByteArray above = successor(prefix);
    if (above.isEmpty())
        above = top;
    switch (op) {
        case SeekOp::Equal:
            return range(key, prefix, above, Direction::Forward, max);
        case SeekOp::GreaterOrEqual:
            return range(key, prefix, top, Direction::Forward, max);
        case SeekOp::Greater:
            return range(key, above, top, Direction::Forward, max);
        case SeekOp::LessOrEqual:
            return range(key, QByteArray(), above, Direction::Backward, max);
        case SeekOp::Less:
            return range(key, QByteArray(), prefix, Direction::Backward, max);
    }
    return {};
}

std::vector<StoredRecord> EmbeddedRecordFile::next(int key, const StoredRecord& from,
                                                   Direction direction, int max) {
    checkKey(key);
    const QByteArray image = m_table.image(key).build(m_table.checked(from.bytes).toByteArray());
    const bool forward = direction == Direction::Forward;
    // First the rest of the records of the same key, in the order of their ids, then the others.
    StatementLease same = m_table.scanSameKey(key, !forward);
    same->bind(1, image);
    same->bind(2, from.id);
    same->bind(3, max);
    std::vector<StoredRecord> records = collect(same, max);
    const int missing = max - static_cast<int>(records.size());
    if (missing <= 0)
        return records;
    QByteArray above = successor(image);
    if (above.isEmpty())
        above = m_table.topImage(key);
    std::vector<StoredRecord> others =
        forward ? range(key, above, m_table.topImage(key), direction, missing)
                : range(key, QByteArray(), image, direction, missing);
    records.insert(records.end(), std::make_move_iterator(others.begin()),
                   std::make_move_iterator(others.end()));
    return records;
}

int EmbeddedRecordFile::compare(int key, const QByteArray& record, const KeyValues& values) const {
    checkKey(key);
    const QByteArray wanted = m_table.image(key).prefix(values);
    const QByteArray image = m_table.image(key).build(m_table.checked(record).toByteArray());
    return std::memcmp(image.constData(), wanted.constData(), static_cast<size_t>(wanted.size()));
}

std::optional<StoredRecord> EmbeddedRecordFile::get(RecordId id) {
    std::optional<QByteArray> bytes = m_table.read(id);
    if (!bytes)
        return std::nullopt;
    return StoredRecord{id, std::move(*bytes)};
}

bool EmbeddedRecordFile::lock(RecordId id, std::chrono::milliseconds wait) {
    if (!m_connection->locks().hold({m_table.number(), id}, wait))
        return false;
    ++m_locked[id];
    return true;
}

void EmbeddedRecordFile::unlock(RecordId id) {
    const auto locked = m_locked.find(id);
    if (locked == m_locked.end())
        return;
    m_connection->locks().release({m_table.number(), id});
    if (--locked->second == 0)
        m_locked.erase(locked);
}

RecordId EmbeddedRecordFile::insert(QByteArray& bytes) {
    RecordId id = 0;
    QByteArray record;
    m_connection->write(Connection::WriteUnit::Records, [&] {
        record = bytes;  // a repeated attempt numbers it anew
        id = m_table.insert(record);
    });
    bytes = record;
    return id;
}

QByteArray EmbeddedRecordFile::stored(RecordId id) {
    std::optional<QByteArray> record = m_table.read(id);
    if (!record)
        throw DataError(ErrorKind::Gone, m_table.name(),
                        QStringLiteral("the record was removed meanwhile"));
    return std::move(*record);
}

void EmbeddedRecordFile::update(RecordId id, const QByteArray& bytes) {
    m_connection->write(Connection::WriteUnit::Records,
                        [&] { m_table.update(id, stored(id), bytes); });
}

void EmbeddedRecordFile::remove(RecordId id) {
    m_connection->write(Connection::WriteUnit::Records, [&] { m_table.remove(id, stored(id)); });
}

}  // namespace data::embedded
