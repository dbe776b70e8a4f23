#include "engines/embedded/schema.h"

#include <QRegularExpression>

#include "engines/embedded/catalogue.h"
#include "engines/embedded/sqlite_names.h"
#include "engines/embedded/stored_table.h"
#include "engines/embedded/virtual_table.h"
#include "engines/journal/journal_store.h"

namespace engines::embedded {

namespace {

constexpr qsizetype kMostNamed = 5;

/// One row of the schema table.
struct SchemaObject {
    QString type;
    QString name;
    QString table;
    QString sql;
};

bool startsWithPrefix(const QString& name, const char* prefix) {
    return name.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
}

/// SQLite's own: counters, statistics, and the indexes that are part of a table's definition.
bool isOfSqlite(const SchemaObject& object) {
    if (object.type == QLatin1String("index"))
        return object.sql.isEmpty() && startsWithPrefix(object.name, "sqlite_autoindex_") &&
               isInternalTable(object.table);
    return object.type == QLatin1String("table") &&
           (object.name == QLatin1String("sqlite_sequence") ||
            startsWithPrefix(object.name, "sqlite_stat"));
}

bool isOwnTable(const SchemaObject& object) {
    if (isInternalTable(object.name))
        return startsWithPrefix(object.sql, "CREATE TABLE ");
    if (object.name.startsWith(storedName(QString()))) {
        // The catalogue tells how many keys there are; checkStored() compares with it.
        static const QRegularExpression keys(
            QStringLiteral("^\\(id INTEGER PRIMARY KEY(, k[0-9]+ BLOB NOT NULL)*, "
                           "data BLOB NOT NULL\\)$"));
        const QString head =
            QStringLiteral("CREATE TABLE ") + QString::fromUtf8(quotedName(object.name));
        return object.sql.startsWith(head) && keys.match(object.sql.mid(head.size())).hasMatch();
    }
    return object.sql == QString::fromUtf8(virtualTableSql(object.name));
}

bool isOwnIndex(const SchemaObject& object) {
    const qsizetype mark = object.name.lastIndexOf(u'_');
    const QString key = object.name.mid(mark + 1);  // "k" and the key's number
    bool isNumber = false;
    const int number = key.mid(1).toInt(&isNumber);
    if (!isNumber || !object.table.startsWith(storedName(QString())))
        return false;
    const auto isMadeBy = [&object](const QByteArray& sql) {
        return object.sql == QString::fromUtf8(sql);
    };
    return object.name == keyIndexName(object.table, number) &&
           (isMadeBy(keyIndexSql(object.table, number, true)) ||
            isMadeBy(keyIndexSql(object.table, number, false)));
}

bool isOwn(const SchemaObject& object) {
    if (object.type == QLatin1String("table"))
        return isOwnTable(object);
    return object.type == QLatin1String("index") && isOwnIndex(object);
}

}  // namespace

bool isInternalTable(const QString& name) {
    return name == QLatin1String(kIdsTable) || journal::JournalStore::tableNames().contains(name);
}

QStringList foreignObjects(sqlite3* db) {
    QStringList lines;
    Statement objects(db, "SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY name");
    while (objects.step()) {
        const SchemaObject object{objects.text(0), objects.text(1), objects.text(2),
                                  objects.text(3)};
        if (!isOfSqlite(object) && !isOwn(object))
            lines.append(QStringLiteral("%1 \"%2\" on \"%3\" is not this program's")
                             .arg(object.type, object.name, object.table));
    }
    return lines;
}

void requireOwnSchema(sqlite3* db, const QString& fileName) {
    const QStringList foreign = foreignObjects(db);
    if (foreign.isEmpty())
        return;
    QString named = foreign.mid(0, kMostNamed).join(QStringLiteral(", "));
    if (foreign.size() > kMostNamed)
        named += QStringLiteral(" ...");
    throw DataError(
        ErrorKind::Damaged, fileName,
        QStringLiteral("%1; drop it with a program of SQLite, or restore a backup").arg(named))
        .inFinnish(
            QStringLiteral("tietokannassa on osia, jotka eivät ole tämän ohjelman: %1").arg(named),
            QStringLiteral("Palauta varmuuskopio tai ota yhteys tukeen."));
}

}  // namespace engines::embedded
