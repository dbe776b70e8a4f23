#include "engines/embedded/stored_table.h"

#include <algorithm>
#include <cstring>

#include "data/record/record_codec.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/record_visit.h"

namespace engines::embedded {

namespace {

// Pool codes of statements: the kind in the low byte, its parameters above.
enum ShapeKind : quint64 {
    kScan = 1,
    kRead,
    kCount,
    kLast,
    kInsert,
    kInsertAs,
    kUpdate,
    kRemove,
    kFloor,
    kSameKey,
    kVisit,
    kVisitImages,
    kCountImages,
    kCountSameKey
};

QByteArray keyColumn(int key) {
    return 'k' + QByteArray::number(key);
}

const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

}  // namespace

StatementLease::StatementLease(StoredTable* table, quint64 shape, Statement statement)
    : m_table(table), m_shape(shape), m_statement(std::move(statement)) {}

StatementLease::~StatementLease() {
    if (m_table != nullptr)
        m_table->returnStatement(m_shape, std::move(m_statement));
}

StatementLease::StatementLease(StatementLease&& other) noexcept
    : m_table(std::exchange(other.m_table, nullptr)),
      m_shape(other.m_shape),
      m_statement(std::move(other.m_statement)) {}

StatementLease& StatementLease::operator=(StatementLease&& other) noexcept {
    std::swap(m_table, other.m_table);
    std::swap(m_shape, other.m_shape);
    std::swap(m_statement, other.m_statement);
    return *this;
}

StoredTable::StoredTable(Connection& connection, TableDescription description)
    : m_connection(connection),
      m_description(std::move(description)),
      m_stored(quotedName(storedName(m_description.name))) {
    checkStored();
    for (const KeyDef& key : keys()) {
        m_images.emplace_back(layout(), key);
        m_topImages.emplace_back(m_images.back().length() + 1, '\xFF');
    }
    m_emptyRecord = QByteArray(layout().recordLength(), '\0');
    for (int i = 0; i < layout().fieldCount(); ++i) {
        const TFieldCacheItem& field = layout().field(i);
        clearField(field, reinterpret_cast<uchar*>(m_emptyRecord.data()));
        if (field.storage == Storage::AutoIncrement)
            m_autoIncrements.push_back(i);
    }
}

void StoredTable::checkStored() const {
    const Connection::InternalUse internal(m_connection);
    try {
        const Statement columns(m_connection.db(), "SELECT * FROM " + m_stored, name());
        const int expected = static_cast<int>(keys().size()) + 2;
        if (sqlite3_column_count(columns.get()) != expected)
            throw DataError(ErrorKind::Damaged, name(),
                            QStringLiteral("the catalogue has %1 keys, the stored table %2")
                                .arg(keys().size())
                                .arg(sqlite3_column_count(columns.get()) - 2))
                .inFinnish(
                    QStringLiteral("taululla on hakemistossa ja tiedostossa eri määrä avaimia"));
    } catch (const DataError& error) {
        if (error.kind() != ErrorKind::NoSuchTable)
            throw;
        if (number() == 0)  // nor in the catalogue
            throw DataError(ErrorKind::NoSuchTable, name(),
                            QStringLiteral("the company has no such table"))
                .inFinnish(QStringLiteral("yrityksellä ei ole sitä"));
        throw DataError(ErrorKind::Damaged, name(),
                        QStringLiteral("the catalogue lists the table, but it is not stored"))
            .inFinnish(QStringLiteral("taulu on hakemistossa, mutta sitä ei ole tiedostossa"));
    }
}

StatementLease StoredTable::lease(quint64 shape, const std::function<QByteArray()>& text) {
    std::vector<Statement>& free = m_pool[shape];
    if (free.empty()) {
        const Connection::InternalUse internal(m_connection);
        return StatementLease(this, shape, Statement(m_connection.db(), text(), name()));
    }
    Statement statement = std::move(free.back());
    free.pop_back();
    return StatementLease(this, shape, std::move(statement));
}

void StoredTable::returnStatement(quint64 shape, Statement statement) {
    statement.reset();
    m_pool[shape].push_back(std::move(statement));
}

QByteArray StoredTable::scanText(const ScanShape& shape) const {
    const QByteArray column = shape.key < 0 ? QByteArray("id") : keyColumn(shape.key);
    QByteArray sql =
        "SELECT id, " + (shape.imageOnly ? column : QByteArray("data")) + " FROM " + m_stored;
    if (shape.bounds == ScanShape::Bounds::Range)
        sql += " WHERE " + column + " >= ?1 AND " + column + " < ?2";
    else if (shape.bounds == ScanShape::Bounds::Equal)
        sql += " WHERE " + column + " = ?1";
    const QByteArray order = shape.backward ? " DESC" : "";
    sql += " ORDER BY " + (shape.key < 0 ? QByteArray() : column + order + ", ") + "id" + order;
    if (shape.limited)
        sql += shape.offset ? " LIMIT ?3 OFFSET ?4" : " LIMIT ?3";
    return sql;
}

StatementLease StoredTable::scan(const ScanShape& shape) {
    const quint64 code = kScan | static_cast<quint64>(shape.key + 1) << 8 |
                         static_cast<quint64>(shape.bounds) << 20 | quint64{shape.backward} << 24 |
                         quint64{shape.imageOnly} << 25 | quint64{shape.limited} << 26 |
                         quint64{shape.offset} << 27;
    return lease(code, [&] { return scanText(shape); });
}

void StoredTable::visit(RecordId first, std::function<bool(RecordId, QByteArrayView)> see) {
    StatementLease rows = lease(kVisit, [&] {
        return "SELECT 1 FROM " + m_stored + " WHERE id >= ?2 AND " + kVisitFunction +
               "(?1, id, data) ORDER BY id";
    });
    rows->bind(2, first);
    RecordVisit{std::move(see), nullptr}.run(*rows);
}

void StoredTable::visitImages(int key, const TableFile::KeyEntry& after,
                              std::function<bool(RecordId, QByteArrayView)> see) {
    StatementLease rows = lease(kVisitImages | static_cast<quint64>(key) << 8, [&] {
        const QByteArray column = keyColumn(key);
        return "SELECT 1 FROM " + m_stored + " WHERE (" + column + ", id) > (?2, ?3) AND " +
               kVisitFunction + "(?1, id, " + column + ") ORDER BY " + column + ", id";
    });
    rows->bind(2, after.image);
    rows->bind(3, after.id);
    RecordVisit{std::move(see), nullptr}.run(*rows);
}

void StoredTable::checkImage(int key, QByteArrayView image) const {
    if (image.size() != m_images[static_cast<size_t>(key)].length())
        throw DataError(ErrorKind::Damaged, name(),
                        QStringLiteral("an entry of key %1 has %2 bytes instead of %3")
                            .arg(key)
                            .arg(image.size())
                            .arg(m_images[static_cast<size_t>(key)].length()));
}

StatementLease StoredTable::scanSameKey(int key, bool backward) {
    return lease(kSameKey | static_cast<quint64>(key) << 8 | quint64{backward} << 24, [&] {
        return "SELECT id, data FROM " + m_stored + " WHERE " + keyColumn(key) + " = ?1 AND id " +
               (backward ? "<" : ">") + " ?2 ORDER BY id" + (backward ? " DESC" : "") + " LIMIT ?3";
    });
}

qint64 StoredTable::countImages(int key, const QByteArray& low, const QByteArray& high) {
    StatementLease select = lease(kCountImages | static_cast<quint64>(key) << 8, [&] {
        return "SELECT count(*) FROM " + m_stored + " WHERE " + keyColumn(key) + " >= ?1 AND " +
               keyColumn(key) + " < ?2";
    });
    select->bind(1, low);
    select->bind(2, high);
    select->step();
    return select->integer(0);
}

qint64 StoredTable::countSameKey(int key, const QByteArray& image, RecordId id, bool below) {
    StatementLease select =
        lease(kCountSameKey | static_cast<quint64>(key) << 8 | quint64{below} << 24, [&] {
            return "SELECT count(*) FROM " + m_stored + " WHERE " + keyColumn(key) +
                   " = ?1 AND id " + (below ? "<" : ">") + " ?2";
        });
    select->bind(1, image);
    select->bind(2, id);
    select->step();
    return select->integer(0);
}

QByteArrayView StoredTable::checked(QByteArrayView record) const {
    if (record.size() != layout().recordLength())
        throw DataError(ErrorKind::Damaged, name(),
                        QStringLiteral("a record has %1 bytes instead of %2")
                            .arg(record.size())
                            .arg(layout().recordLength()))
            .inFinnish(QStringLiteral("tietueessa on %1 tavua eikä %2")
                           .arg(record.size())
                           .arg(layout().recordLength()));
    return record;
}

std::optional<QByteArray> StoredTable::read(RecordId id) {
    StatementLease select =
        lease(kRead, [&] { return "SELECT data FROM " + m_stored + " WHERE id = ?1"; });
    select->bind(1, id);
    if (!select->step())
        return std::nullopt;
    return checked(select->blob(0)).toByteArray();
}

qint64 StoredTable::count() {
    StatementLease select = lease(kCount, [&] { return "SELECT count(*) FROM " + m_stored; });
    select->step();
    return select->integer(0);
}

qint64 StoredTable::estimatedCount() {
    StatementLease select =
        lease(kLast, [&] { return "SELECT ifnull(max(id), 0) FROM " + m_stored; });
    select->step();
    return select->integer(0);
}

RecordId StoredTable::insert(QByteArray& record) {
    checked(record);
    numberRecord(record);
    RecordId id = 0;
    write(id, nullptr, &record);
    return id;
}

void StoredTable::insertAs(RecordId id, const QByteArray& record) {
    checked(record);
    StatementLease insert = lease(kInsertAs, [&] {
        QByteArray columns = "id, data";
        QByteArray values = "?1, ?2";
        for (int key = 0; key < static_cast<int>(m_images.size()); ++key) {
            columns += ", " + keyColumn(key);
            values += ", ?" + QByteArray::number(key + 3);
        }
        return "INSERT INTO " + m_stored + "(" + columns + ") VALUES (" + values + ")";
    });
    std::vector<QByteArray> images;
    for (const KeyImage& image : m_images)
        images.push_back(image.build(record));
    insert->bind(1, id);
    insert->bind(2, record);
    for (size_t key = 0; key < images.size(); ++key)
        insert->bind(static_cast<int>(key) + 3, images[key]);
    insert->run();
}

void StoredTable::update(RecordId id, const QByteArray& before, const QByteArray& after) {
    checked(after);
    write(id, &before, &after);
}

void StoredTable::remove(RecordId id, const QByteArray& before) {
    write(id, &before, nullptr);
}

void StoredTable::write(RecordId& id, const QByteArray* before, const QByteArray* after) {
    if (before != nullptr && !m_connection.locks().tryForStatement({number(), id}))
        m_connection.throwHeld(*this, *before);
    try {
        if (after == nullptr)
            writeRemoval(id);
        else if (before == nullptr)
            writeNew(id, *after);
        else
            writeChange(id, *before, *after);
    } catch (const DataError& error) {
        if (error.kind() == ErrorKind::DuplicateKey && after != nullptr)
            throwDuplicate(error, *after);
        throw;
    }
    if (m_connection.journal().recording() != 0)
        m_connection.journal().record(layout(), keys(), id, before, after);
}

void StoredTable::writeNew(RecordId& id, const QByteArray& record) {
    StatementLease insert = lease(kInsert, [&] {
        QByteArray columns = "id";
        QByteArray values = "max(ifnull((SELECT max(id) + 1 FROM " + m_stored +
                            "), 1), ifnull((SELECT next FROM " + kIdsTable +
                            " WHERE name = ?1), 1))";
        int parameter = 2;
        for (size_t key = 0; key < m_images.size(); ++key) {
            columns += ", " + keyColumn(static_cast<int>(key));
            values += ", ?" + QByteArray::number(parameter++);
        }
        return "INSERT INTO " + m_stored + "(" + columns + ", data) VALUES (" + values + ", ?" +
               QByteArray::number(parameter) + ")";
    });
    std::vector<QByteArray> images;
    insert->bindText(1, name());
    for (const KeyImage& image : m_images) {
        images.push_back(image.build(record));
        insert->bind(static_cast<int>(images.size()) + 1, images.back());
    }
    insert->bind(static_cast<int>(images.size()) + 2, record);
    insert->run();
    id = sqlite3_last_insert_rowid(m_connection.db());
}

void StoredTable::writeChange(RecordId id, const QByteArray& before, const QByteArray& after) {
    if (before == after)
        return;
    std::vector<QByteArray> images;
    quint64 changed = 0;
    for (size_t key = 0; key < m_images.size(); ++key) {
        if (!m_images[key].differs(bytesOf(before), bytesOf(after)))
            continue;
        const QByteArray image = m_images[key].build(after);
        if (image == m_images[key].build(before))
            continue;
        images.push_back(image);
        changed |= quint64{1} << key;
    }
    StatementLease update = lease(kUpdate | changed << 8, [&] {
        QByteArray sql = "UPDATE " + m_stored + " SET data = ?2";
        int parameter = 3;
        for (size_t key = 0; key < m_images.size(); ++key) {
            if ((changed >> key & 1) != 0)
                sql += ", " + keyColumn(static_cast<int>(key)) + " = ?" +
                       QByteArray::number(parameter++);
        }
        return sql + " WHERE id = ?1";
    });
    update->bind(1, id);
    update->bind(2, after);
    for (size_t i = 0; i < images.size(); ++i)
        update->bind(static_cast<int>(i) + 3, images[i]);
    update->run();
}

void StoredTable::writeRemoval(RecordId id) {
    StatementLease remove =
        lease(kRemove, [&] { return "DELETE FROM " + m_stored + " WHERE id = ?1"; });
    remove->bind(1, id);
    remove->run();
    if (id <= estimatedCount())
        return;
    StatementLease floor = lease(kFloor, [] {
        return QByteArray("INSERT INTO ") + kIdsTable +
               "(name, next) VALUES (?1, ?2) ON CONFLICT(name) DO UPDATE SET next = "
               "max(next, excluded.next)";
    });
    floor->bindText(1, name());
    floor->bind(2, id + 1);
    floor->run();
}

void StoredTable::numberRecord(QByteArray& record) {
    for (const int index : m_autoIncrements) {
        const TFieldCacheItem& field = layout().field(index);
        auto* bytes = reinterpret_cast<uchar*>(record.data());
        if (readInteger(field, bytes) != 0)
            continue;
        qint64 largest = 0;
        const auto key =
            std::find_if(m_images.begin(), m_images.end(), [index](const KeyImage& image) {
                return image.segments().front().fieldIndex == index &&
                       !image.segments().front().descending;
            });
        const bool keyed = key != m_images.end();
        StatementLease last = scan({keyed ? static_cast<int>(key - m_images.begin()) : -1,
                                    ScanShape::Bounds::None, true, false, false});
        while (last->step()) {
            const QByteArrayView stored = checked(last->blob(1));
            largest = std::max(largest,
                               readInteger(field, reinterpret_cast<const uchar*>(stored.data())));
            if (keyed)
                break;
        }
        writeInteger(field, bytes, largest + 1, name());
    }
}

QString StoredTable::describe(const QByteArray& record) const {
    QStringList parts;
    if (!keys().empty()) {
        for (const KeySegment& segment : keys().front().segments) {
            const TFieldCacheItem& field = layout().field(segment.fieldIndex);
            parts.append(field.name + QStringLiteral(" \"") +
                         valueToText(field, readValue(field, bytesOf(record))) + QLatin1Char('"'));
        }
    }
    return parts.join(QStringLiteral(", "));
}

void StoredTable::throwDuplicate(const DataError& error, const QByteArray& record) const {
    // "UNIQUE constraint failed: rec_T.k0"
    const qsizetype column = error.detail().lastIndexOf(QLatin1String(".k"));
    bool isNumber = false;
    const int key = error.detail().mid(column + 2).toInt(&isNumber);
    if (column < 0 || !isNumber || key >= static_cast<int>(keys().size()))
        throw error;
    QStringList parts;
    for (const KeySegment& segment : keys()[static_cast<size_t>(key)].segments) {
        const TFieldCacheItem& field = layout().field(segment.fieldIndex);
        parts.append(field.name + QStringLiteral(" \"") +
                     valueToText(field, readValue(field, bytesOf(record))) + QLatin1Char('"'));
    }
    throw DataError(
        ErrorKind::DuplicateKey, name(),
        QStringLiteral("key %1 has %2 already").arg(key).arg(parts.join(QStringLiteral(", "))),
        error.nativeCode())
        .inFinnish(
            QStringLiteral("avaimessa %1 on jo %2").arg(key).arg(parts.join(QStringLiteral(", "))));
}

QString keyIndexName(const QString& stored, int key) {
    return stored + u'_' + QString::fromLatin1(keyColumn(key));
}

QByteArray keyIndexSql(const QString& stored, int key, bool unique) {
    return (unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
           quotedName(keyIndexName(stored, key)) + " ON " + quotedName(stored) + "(" +
           keyColumn(key) + ")";
}

std::vector<QByteArray> creationSql(const TableDescription& table) {
    const QString stored = storedName(table.name);
    QByteArray columns = "id INTEGER PRIMARY KEY";
    for (const KeyDef& key : table.keys)
        columns += ", " + keyColumn(key.number) + " BLOB NOT NULL";
    std::vector<QByteArray> statements;
    statements.push_back("CREATE TABLE " + quotedName(stored) + "(" + columns +
                         ", data BLOB NOT NULL)");
    for (const KeyDef& key : table.keys)
        statements.push_back(keyIndexSql(stored, key.number, key.unique));
    return statements;
}

}  // namespace engines::embedded
