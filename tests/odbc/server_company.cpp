#include "tests/odbc/server_company.h"

#include <QDir>
#include <algorithm>

#include "data/record/record_codec.h"
#include "engines/shops/write_target.h"

namespace test {

namespace {

using data::Direction;
using data::KeyValues;
using data::RecordId;
using data::SeekOp;
using data::StoredRecord;

uchar* bytesOf(QByteArray& record) {
    return reinterpret_cast<uchar*>(record.data());
}

const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

/// Records of a small table: every call reads all of them.
class ServerTable : public data::TableFile {
  public:
    ServerTable(std::unique_ptr<data::TableFile> shape, engines::shops::OdbcConnection& connection)
        : m_shape(std::move(shape)),
          m_connection(connection),
          m_name(layout().tableName()),
          m_fields(sqlFields(sourceOf(m_name))) {
        // single bits after the bytes that hold them
        std::stable_partition(m_fields.begin(), m_fields.end(), [](const auto& field) {
            return field.storage != data::Storage::Bit;
        });
        for (const data::TFieldCacheItem& field : m_fields)
            m_columns += quoted(field.name);
    }

    const data::RecordLayout& layout() const override { return m_shape->layout(); }
    const std::vector<data::KeyDef>& keys() const override { return m_shape->keys(); }
    int compare(int key, const QByteArray& record, const KeyValues& values) const override {
        return m_shape->compare(key, record, values);
    }
    qint64 recordCount() override { return static_cast<qint64>(read({}).size()); }
    std::optional<StoredRecord> get(RecordId id) override {
        std::vector<StoredRecord> found = read(id);
        return found.empty() ? std::nullopt : std::optional(std::move(found.front()));
    }

    std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) override {
        return chosen(key, direction, max, [](const StoredRecord&) { return true; });
    }
    std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values, int max) override {
        const bool back = op == SeekOp::LessOrEqual || op == SeekOp::Less;
        return chosen(key, back ? Direction::Backward : Direction::Forward, max,
                      [&](const StoredRecord& record) {
                          const int order = compare(key, record.bytes, values);
                          return order == 0 ? op != SeekOp::Greater && op != SeekOp::Less
                                            : op != SeekOp::Equal && (order < 0) == back;
                      });
    }
    std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                   int max) override {
        return chosen(key, direction, max, [&](const StoredRecord& record) {
            return direction == Direction::Forward ? isBefore(key, from, record)
                                                   : isBefore(key, record, from);
        });
    }

    bool lock(RecordId, std::chrono::milliseconds) override { return true; }
    void unlock(RecordId) override {}

    RecordId insert(QByteArray& bytes) override {
        for (const data::TFieldCacheItem& field : m_fields) {
            if (field.storage == data::Storage::AutoIncrement &&
                data::readInteger(field, bytesOf(bytes)) == 0)
                data::writeInteger(field, bytesOf(bytes), highest(field.name) + 1, m_name);
        }
        QStringList places;
        for (qsizetype i = 0; i < m_columns.size(); ++i)
            places += QStringLiteral(":p%1").arg(i);
        send(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                 .arg(quoted(m_name), m_columns.join(QStringLiteral(", ")),
                      places.join(QStringLiteral(", "))),
             bytes);
        return highest(kRowNumber);
    }
    void update(RecordId id, const QByteArray& bytes) override {
        QStringList values;
        for (qsizetype i = 0; i < m_columns.size(); ++i)
            values += QStringLiteral("%1 = :p%2").arg(m_columns[i]).arg(i);
        send(QStringLiteral("UPDATE %1 SET %2")
                     .arg(quoted(m_name), values.join(QStringLiteral(", "))) +
                 where(id),
             bytes);
    }
    void remove(RecordId id) override {
        m_connection.prepare(QStringLiteral("DELETE FROM ") + quoted(m_name) + where(id))
            ->execute();
    }

  private:
    static QString where(RecordId id) {
        return QStringLiteral(" WHERE %1 = %2").arg(quoted(kRowNumber)).arg(id);
    }

    std::vector<StoredRecord> read(std::optional<RecordId> id) {
        const auto query = m_connection.prepare(
            QStringLiteral("SELECT %1, %2 FROM %3")
                .arg(quoted(kRowNumber), m_columns.join(QStringLiteral(", ")), quoted(m_name)) +
            (id ? where(*id) : QString()));
        std::vector<StoredRecord> found;
        while (query->step()) {
            QByteArray record(layout().recordLength(), '\0');
            for (const data::TFieldCacheItem& field : layout().fields())
                data::clearField(field, bytesOf(record));
            for (size_t i = 0; i < m_fields.size(); ++i)
                data::writeValue(m_fields[i], bytesOf(record),
                                 query->value(static_cast<int>(i) + 1), m_name);
            found.push_back({query->value(0).toLongLong(), std::move(record)});
        }
        return found;
    }

    bool isBefore(int key, const StoredRecord& left, const StoredRecord& right) const {
        KeyValues values;
        for (const data::KeySegment& segment : keys()[static_cast<size_t>(key)].segments)
            values.push_back(
                data::readValue(layout().field(segment.fieldIndex), bytesOf(right.bytes)));
        const int order = compare(key, left.bytes, values);
        return order < 0 || (order == 0 && left.id < right.id);
    }

    template <typename Choice>
    std::vector<StoredRecord> chosen(int key, Direction direction, int max, Choice choice) {
        std::vector<StoredRecord> records = read({});
        std::erase_if(records, [&](const StoredRecord& record) { return !choice(record); });
        std::sort(records.begin(), records.end(),
                  [&](const auto& left, const auto& right) { return isBefore(key, left, right); });
        if (direction == Direction::Backward)
            std::reverse(records.begin(), records.end());
        if (records.size() > static_cast<size_t>(max))
            records.resize(static_cast<size_t>(max));
        return records;
    }

    qint64 highest(const QString& column) {
        const auto query = m_connection.prepare(
            QStringLiteral("SELECT MAX(%1) FROM %2").arg(quoted(column), quoted(m_name)));
        return query->step() ? query->value(0).toLongLong() : 0;
    }

    void send(const QString& sql, const QByteArray& record) {
        const auto statement = m_connection.prepare(sql);
        for (size_t i = 0; i < m_fields.size(); ++i)
            statement->bind(QStringLiteral("p%1").arg(i), sqlValue(m_fields[i], bytesOf(record)));
        statement->execute();
    }

    std::unique_ptr<data::TableFile> m_shape;
    engines::shops::OdbcConnection& m_connection;
    QString m_name;
    std::vector<data::TFieldCacheItem> m_fields;
    QStringList m_columns;
};

/// Names the columns of an INSERT without them, since the row number is no column of the company.
QString withColumns(const QString& sql) {
    const auto target = engines::shops::writeTargetOf(sql);
    if (!target || target->kind != engines::shops::WriteTarget::Kind::Insert ||
        !target->columns.isEmpty())
        return sql;
    QStringList names;
    for (const data::TFieldCacheItem& field : sqlFields(sourceOf(target->table)))
        names += quoted(field.name);
    return QString(sql).insert(sql.indexOf(QLatin1String("values")),
                               u'(' + names.join(QStringLiteral(", ")) + QStringLiteral(") "));
}

}  // namespace

ServerCompany::ServerCompany(const engines::shops::OdbcSettings& settings, const QString& shapes,
                             const QString& journalFolder)
    : OdbcDatabase(settings),
      m_records(engines::shops::OdbcConnection::connect(settings)),
      m_shapes(engines::openEmbedded(QStringLiteral("MUODOT"), shapes)),
      m_lock(QDir(journalFolder).filePath(QStringLiteral("TAKSAVAIHE.LCK"))),
      m_journal(
          journalFolder, [this](const QString& table) { return plainTable(table); },
          [this] { return m_lock.runGoesOn(); }, std::chrono::seconds(1)) {}

std::unique_ptr<data::TableFile> ServerCompany::plainTable(const QString& name) {
    return std::make_unique<ServerTable>(m_shapes->openTable(name), *m_records);
}

std::unique_ptr<data::TableFile> ServerCompany::openTable(const QString& tableName) {
    return engines::shops::journaled(plainTable(tableName), m_journal);
}

std::unique_ptr<data::SqlStatement> ServerCompany::prepare(const QString& sql) {
    return engines::shops::journaled(connection->prepare(withColumns(sql)), sql, m_journal, *this);
}

void ServerCompany::setLockWait(std::chrono::milliseconds wait) {
    OdbcDatabase::setLockWait(wait);
    m_records->setLockWait(wait);
}

}  // namespace test
