#include "engines/embedded/table_file.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace engines::embedded {

EmbeddedTableFile::EmbeddedTableFile(std::shared_ptr<Connection> connection, StoredTable& table)
    : m_connection(std::move(connection)), m_table(table) {}

EmbeddedTableFile::~EmbeddedTableFile() {
    for (const auto& [id, locked] : m_locked) {
        for (int i = 0; i < locked.count; ++i)
            m_connection->locks().release({m_table.number(), id});
    }
}

void EmbeddedTableFile::checkKey(int key) const {
    if (key < 0 || key >= static_cast<int>(keys().size()))
        throw DataError(ErrorKind::NoSuchField, m_table.name(),
                        QStringLiteral("the table has no key %1").arg(key));
}

std::vector<StoredRecord> EmbeddedTableFile::collect(StatementLease& rows, int max) const {
    std::vector<StoredRecord> records;
    while (static_cast<int>(records.size()) < max && rows->step())
        records.push_back({rows->integer(0), m_table.checked(rows->blob(1)).toByteArray()});
    return records;
}

std::vector<StoredRecord> EmbeddedTableFile::range(int key, const QByteArray& low,
                                                   const QByteArray& high, Direction direction,
                                                   int max) {
    StatementLease rows = m_table.scan(
        {key, ScanShape::Bounds::Range, direction == Direction::Backward, false, true});
    rows->bind(1, low);
    rows->bind(2, high);
    rows->bind(3, max);
    return collect(rows, max);
}

std::vector<StoredRecord> EmbeddedTableFile::fromEnd(int key, Direction direction, int max) {
    checkKey(key);
    StatementLease rows =
        m_table.scan({key, ScanShape::Bounds::None, direction == Direction::Backward, false, true});
    rows->bind(3, max);
    return collect(rows, max);
}

std::vector<StoredRecord> EmbeddedTableFile::seek(int key, SeekOp op, const KeyValues& values,
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

std::vector<StoredRecord> EmbeddedTableFile::next(int key, const StoredRecord& from,
                                                  Direction direction, int max) {
    checkKey(key);
    const QByteArray image = m_table.image(key).build(m_table.checked(from.bytes).toByteArray());
    const bool forward = direction == Direction::Forward;
    // First the remaining records of the same key in id order, then the following keys.
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

QByteArray EmbeddedTableFile::imageOf(int key, const StoredRecord& record) const {
    return m_table.image(key).build(m_table.checked(record.bytes).toByteArray());
}

// A bound above all records of an image.
QByteArray EmbeddedTableFile::above(int key, const QByteArray& image) const {
    const QByteArray next = successor(image);
    return next.isEmpty() ? m_table.topImage(key) : next;
}

std::optional<StoredRecord> EmbeddedTableFile::skip(int key,
                                                    const std::optional<StoredRecord>& from,
                                                    Direction direction, qint64 count) {
    checkKey(key);
    const bool backward = direction == Direction::Backward;
    QByteArray low;
    QByteArray high = m_table.topImage(key);
    if (from) {
        const QByteArray image = imageOf(key, *from);
        const qint64 same = m_table.countSameKey(key, image, from->id, backward);
        if (same >= count) {
            std::vector<StoredRecord> equal = next(key, *from, direction, static_cast<int>(count));
            return std::move(equal.back());
        }
        count -= same;
        (backward ? high : low) = backward ? image : above(key, image);
    }
    RecordId id = 0;
    {
        // The key identifies the record; skipped records are not read.
        StatementLease rows =
            m_table.scan({key, ScanShape::Bounds::Range, backward, true, true, true});
        rows->bind(1, low);
        rows->bind(2, high);
        rows->bind(3, 1);
        rows->bind(4, count - 1);
        if (!rows->step())
            return std::nullopt;
        id = rows->integer(0);
    }
    return get(id);
}

qint64 EmbeddedTableFile::countBetween(int key, const std::optional<StoredRecord>& from,
                                       const StoredRecord& to) {
    checkKey(key);
    const QByteArray high = imageOf(key, to);
    const QByteArray low = from ? imageOf(key, *from) : QByteArray();
    if (low > high)
        return 0;
    qint64 count =
        m_table.countImages(key, low, high) + m_table.countSameKey(key, high, to.id, true);
    if (from)
        count -= m_table.countSameKey(key, low, from->id, true);
    return std::max<qint64>(count, 0);
}

std::optional<StoredRecord> EmbeddedTableFile::visit(int key,
                                                     const std::optional<StoredRecord>& from,
                                                     Direction direction, int max,
                                                     const Visitor& see) {
    checkKey(key);
    const bool backward = direction == Direction::Backward;
    std::optional<StoredRecord> last;
    RecordId lastId = 0;
    int left = max;
    // @return false to stop.
    const auto show = [&](StatementLease rows) {
        while (left > 0 && rows->step()) {
            const QByteArrayView bytes = m_table.checked(rows->blob(1));
            lastId = rows->integer(0);
            const bool more = see(lastId, QByteArray::fromRawData(bytes.data(), bytes.size()));
            if (--left == 0 || !more) {
                last = StoredRecord{lastId, bytes.toByteArray()};
                return false;
            }
        }
        return true;
    };
    QByteArray low;
    QByteArray high = m_table.topImage(key);
    if (from) {
        const QByteArray image = imageOf(key, *from);
        StatementLease same = m_table.scanSameKey(key, backward);
        same->bind(1, image);
        same->bind(2, from->id);
        same->bind(3, max);
        if (!show(std::move(same)))
            return last;
        (backward ? high : low) = backward ? image : above(key, image);
    }
    StatementLease rows =
        m_table.scan({key, ScanShape::Bounds::Range, backward, false, true, false});
    rows->bind(1, low);
    rows->bind(2, high);
    rows->bind(3, left);
    if (show(std::move(rows)) && lastId != 0)
        last = get(lastId);
    return last;
}

std::optional<RecordId> EmbeddedTableFile::visitStored(std::optional<RecordId> after, int max,
                                                       const Visitor& see) {
    std::optional<RecordId> last;
    int left = max;
    m_table.visit(after ? *after + 1 : std::numeric_limits<RecordId>::min(),
                  [&](RecordId id, QByteArrayView record) {
                      last = id;
                      const QByteArrayView bytes = m_table.checked(record);
                      return see(id, QByteArray::fromRawData(bytes.data(), bytes.size())) &&
                             --left > 0;
                  });
    return last;
}

std::optional<StoredRecord> EmbeddedTableFile::visitIds(int key,
                                                        const std::optional<StoredRecord>& from,
                                                        int max,
                                                        const std::function<void(RecordId)>& see) {
    checkKey(key);
    RecordId lastId = 0;
    int left = max;
    QByteArray low;
    if (from) {
        const QByteArray image = imageOf(key, *from);
        StatementLease same = m_table.scanSameKey(key, false);
        same->bind(1, image);
        same->bind(2, from->id);
        same->bind(3, left);
        for (; same->step(); --left) {
            lastId = same->integer(0);
            see(lastId);
        }
        low = above(key, image);
    }
    if (left > 0) {
        StatementLease rows =
            m_table.scan({key, ScanShape::Bounds::Range, false, true, true, false});
        rows->bind(1, low);
        rows->bind(2, m_table.topImage(key));
        rows->bind(3, left);
        while (rows->step()) {
            lastId = rows->integer(0);
            see(lastId);
        }
    }
    return lastId != 0 ? get(lastId) : std::nullopt;
}

bool EmbeddedTableFile::showsKeyTexts(int key) const {
    checkKey(key);
    return m_table.image(key).beginsWithText();
}

std::optional<data::TableFile::KeyEntry> EmbeddedTableFile::visitKeyTexts(
    int key, const std::optional<KeyEntry>& after, int max, const TextVisitor& see) {
    checkKey(key);
    const KeyImage& image = m_table.image(key);
    std::optional<KeyEntry> last;
    int left = max;
    m_table.visitImages(key, after.value_or(KeyEntry()), [&](RecordId id, QByteArrayView entry) {
        m_table.checkImage(key, entry);
        const bool more = see(id, image.textOf(entry)) && --left > 0;
        if (!more)
            last = KeyEntry{entry.toByteArray(), id};
        return more;
    });
    return last;
}

int EmbeddedTableFile::compare(int key, const QByteArray& record, const KeyValues& values) const {
    checkKey(key);
    const QByteArray wanted = m_table.image(key).prefix(values);
    QByteArray image;
    m_table.image(key).build(reinterpret_cast<const uchar*>(m_table.checked(record).data()), image);
    return std::memcmp(image.constData(), wanted.constData(), static_cast<size_t>(wanted.size()));
}

std::optional<StoredRecord> EmbeddedTableFile::get(RecordId id) {
    std::optional<QByteArray> bytes = m_table.read(id);
    if (!bytes)
        return std::nullopt;
    if (const auto locked = m_locked.find(id); locked != m_locked.end())
        locked->second.seen = *bytes;
    return StoredRecord{id, std::move(*bytes)};
}

bool EmbeddedTableFile::lock(RecordId id, std::chrono::milliseconds wait) {
    const RecordAddress record{m_table.number(), id};
    if (!m_connection->locks().tryHold(record)) {
        if (wait <= std::chrono::milliseconds(0))
            return false;
        m_connection->flushBeforeWait();
        if (!m_connection->locks().hold(record, wait))
            return false;
    }
    ++m_locked[id].count;
    return true;
}

void EmbeddedTableFile::unlock(RecordId id) {
    const auto locked = m_locked.find(id);
    if (locked == m_locked.end())
        return;
    m_connection->locks().release({m_table.number(), id});
    if (--locked->second.count == 0)
        m_locked.erase(locked);
}

RecordId EmbeddedTableFile::insert(QByteArray& bytes) {
    RecordId id = 0;
    QByteArray record;
    m_connection->write(Connection::WriteUnit::Records, [&] {
        record = bytes;  // a repeated attempt assigns a new number
        id = m_table.insert(record);
    });
    bytes = record;
    return id;
}

QByteArray EmbeddedTableFile::stored(RecordId id) {
    std::optional<QByteArray> record = m_table.read(id);
    if (!record)
        throw DataError(ErrorKind::Gone, m_table.name(),
                        QStringLiteral("the record was removed meanwhile"))
            .inFinnish(QStringLiteral("toinen ohjelma poisti sen"));
    return std::move(*record);
}

void EmbeddedTableFile::update(RecordId id, const QByteArray& bytes) {
    const auto locked = m_locked.find(id);
    m_connection->write(Connection::WriteUnit::Records, [&] {
        const QByteArray before = stored(id);
        // The lock excludes other programs, not other tables and statements of this one.
        if (locked != m_locked.end() && !locked->second.seen.isEmpty() &&
            locked->second.seen != before)
            throw DataError(ErrorKind::Engine, m_table.name(),
                            QStringLiteral("this program itself changed the record while it was "
                                           "being edited: %1")
                                .arg(m_table.describe(before)))
                .inFinnish(QStringLiteral("tämä ohjelma itse muutti tietuetta sen ollessa "
                                          "muokattavana: ") +
                           m_table.describe(before));
        m_table.update(id, before, bytes);
    });
    if (locked != m_locked.end())
        locked->second.seen = bytes;
}

void EmbeddedTableFile::remove(RecordId id) {
    m_connection->write(Connection::WriteUnit::Records, [&] { m_table.remove(id, stored(id)); });
}

}  // namespace engines::embedded
