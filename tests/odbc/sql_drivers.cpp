#include "tests/odbc/sql_drivers.h"

#include <QCoreApplication>
#include <QFile>
#include <algorithm>

#include "data/record/record_codec.h"

namespace test {

namespace {

const QString kEmbedded = QStringLiteral("embedded");
const QString kSqlite = QStringLiteral("sqlite");
const QString kVirtuoso = QStringLiteral("virtuoso");

// An INSERT leaves the kind's empty value in other columns, as in a record.
QString sqlType(const data::TFieldCacheItem& field, const QString& single) {
    static const std::map<data::Kind, const char*> kTypes{
        {data::Kind::Boolean, "SMALLINT DEFAULT 0"},
        {data::Kind::SmallInt, "SMALLINT DEFAULT 0"},
        {data::Kind::Integer, "INTEGER DEFAULT 0"},
        {data::Kind::Unsigned, "INTEGER DEFAULT 0"},
        {data::Kind::LargeInt, "BIGINT DEFAULT 0"},
        {data::Kind::Date, "DATE"},
        {data::Kind::Time, "TIME"},
        {data::Kind::Timestamp, "DATETIME"},
        {data::Kind::RawBytes, "VARBINARY(%1)"},
        {data::Kind::VarBinary, "VARBINARY(%1)"}};
    const int length = std::max<int>(1, field.storedLength);
    if (field.kind() == data::Kind::Float)
        return (length == 4 ? single : QStringLiteral("DOUBLE PRECISION")) + " DEFAULT 0";
    const auto found = kTypes.find(field.kind());
    if (found == kTypes.end())
        return QStringLiteral("VARCHAR(%1) DEFAULT ''").arg(2 * length);
    return QString(found->second).replace("%1", QString::number(length));
}

}  // namespace

QString quoted(const QString& name) {
    return QLatin1Char('"') + name + QLatin1Char('"');
}

data::TableSource sourceOf(const QString& name) {
    for (data::TableSource& table : data::allTableSources()) {
        if (table.name.compare(name, Qt::CaseInsensitive) == 0)
            return table;
    }
    throw data::DataError(data::ErrorKind::NoSuchTable, name, QStringLiteral("no dictionary"));
}

std::vector<data::TFieldCacheItem> sqlFields(const data::TableSource& table) {
    std::vector<data::TFieldCacheItem> fields = table.fields;
    std::erase_if(fields, [](const data::TFieldCacheItem& field) {
        return field.storage == data::Storage::Bit &&
               field.name.compare(QLatin1String("VERKKOKAUPPA"), Qt::CaseInsensitive) != 0;
    });
    return fields;
}

data::Value sqlValue(const data::TFieldCacheItem& field, const uchar* record) {
    const data::Value value = data::readValue(field, record);
    const bool isTime = field.kind() == data::Kind::Date || field.kind() == data::Kind::Time ||
                        field.kind() == data::Kind::Timestamp;
    return isTime && data::valueToText(field, value).isEmpty() ? data::Value() : value;
}

bool SqlEngine::isAvailable(const QString& name) {
    return name == kEmbedded || qEnvironmentVariableIsSet("TAKSAVAIHE_SQL_SERVERS");
}

SqlEngine::SqlEngine(const QString& name, const QStringList& tables, RowNumbers numbers)
    : m_name(name) {
    if (name == kEmbedded || name == kSqlite)
        engines::createEmbedded(m_folder.path(), data::allTableSources());
    m_database = connect();
    if (name != kEmbedded && name != kSqlite)
        createTables(tables, numbers);
}

engines::shops::OdbcSettings SqlEngine::settings() const {
    engines::shops::OdbcSettings settings;
    settings.dataSource = QStringLiteral("taksavaihe-") + m_name;
    if (m_name == kSqlite)
        settings.attributes = QStringLiteral("Database=%1;LoadExt=%2")
                                  .arg(m_folder.filePath(engines::kEmbeddedFileName),
                                       QStringLiteral(TAKSAVAIHE_SQL_EXTENSION));
    return settings;
}

std::unique_ptr<data::Database> SqlEngine::connect(std::chrono::milliseconds statementLimit) const {
    if (m_name == kEmbedded)
        return engines::openEmbedded(QStringLiteral("KOE"), m_folder.path());
    engines::shops::OdbcSettings wanted = settings();
    wanted.statementLimit = statementLimit;
    return std::make_unique<OdbcDatabase>(wanted);
}

void SqlEngine::createTables(const QStringList& tables, RowNumbers numbers) const {
    for (const QString& name : tables) {
        const data::TableSource table = sourceOf(name);
        try {
            exec(*m_database, QStringLiteral("DROP TABLE ") + quoted(name));
        } catch (const data::DataError& error) {
            EXPECT_EQ(error.kind(), data::ErrorKind::NoSuchTable) << error.what();
        }
        const QString single(m_name == kVirtuoso ? "REAL" : "FLOAT");
        QStringList columns;
        for (const data::TFieldCacheItem& field : sqlFields(table))
            columns += quoted(field.name) + QLatin1Char(' ') + sqlType(field, single);
        if (numbers == RowNumbers::Added)
            columns += QStringLiteral("%1 INTEGER %2, PRIMARY KEY (%1)")
                           .arg(quoted(kRowNumber),
                                QLatin1String(m_name == kVirtuoso ? "IDENTITY" : "AUTO_INCREMENT"));
        exec(*m_database, QStringLiteral("CREATE TABLE %1 (%2)")
                              .arg(quoted(name), columns.join(QStringLiteral(", "))));
    }
}

void copyTable(data::Database& from, data::Database& to, const data::TableSource& table) {
    QStringList names;
    QStringList places;
    const std::vector<data::TFieldCacheItem> fields = sqlFields(table);
    for (const data::TFieldCacheItem& field : fields) {
        names += quoted(field.name);
        places += QStringLiteral(":p%1").arg(places.size());
    }
    data::TUniQuery insert(&to);
    insert.sql().setText(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                             .arg(quoted(table.name), names.join(QStringLiteral(", ")),
                                  places.join(QStringLiteral(", "))));
    const auto records = from.openTable(table.name);
    to.inTransaction([&] {
        for (const data::StoredRecord& record :
             records->fromEnd(0, data::Direction::Forward, 1000000)) {
            const auto* bytes = reinterpret_cast<const uchar*>(record.bytes.constData());
            for (size_t i = 0; i < fields.size(); ++i) {
                data::TParam& place = insert.paramByName(places[static_cast<qsizetype>(i)].mid(1));
                const data::Value value = sqlValue(fields[i], bytes);
                if (value.isValid())
                    place.setValue(value);
                else
                    place.setNull();
            }
            insert.execSql();
        }
    });
}

}  // namespace test
