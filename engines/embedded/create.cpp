#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "data/record/record_codec.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/embedded_database.h"
#include "engines/embedded/stored_table.h"
#include "engines/embedded/virtual_table.h"

namespace engines {

namespace embedded {

namespace {

constexpr int kPriceLevels = 9;

void removeDatabaseFiles(const QString& file) {
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm"),
                                  QStringLiteral("-journal"), QStringLiteral("-lock")})
        QFile::remove(file + suffix);
}

bool isNamed(const TableSource& table, const QString& name) {
    return table.name.compare(name, Qt::CaseInsensitive) == 0;
}

// The tables, preceded by the catalogue's own; catalogue tables missing from the list are added.
std::vector<TableSource> withCatalogue(const std::vector<TableSource>& tables) {
    const QStringList own{kFileTable, kFieldTable, kIndexTable};
    std::vector<TableSource> all;
    for (const QString& name : own) {
        const auto named = [&name](const TableSource& table) { return isNamed(table, name); };
        const auto given = std::find_if(tables.begin(), tables.end(), named);
        if (given != tables.end()) {
            all.push_back(*given);
            continue;
        }
        const std::vector<TableSource> sources = allTableSources();
        all.push_back(*std::find_if(sources.begin(), sources.end(), named));
    }
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(all),
                 [&own](const TableSource& table) {
                     return !own.contains(table.name, Qt::CaseInsensitive);
                 });
    return all;
}

void makeTables(const QString& file, const std::vector<TableSource>& tables) {
    SqliteHandle handle(file, SqliteHandle::Mode::Create);
    execute(handle.get(),
            "PRAGMA page_size = 4096; PRAGMA journal_mode = MEMORY; PRAGMA application_id = " +
                QByteArray::number(kApplicationId) +
                "; PRAGMA user_version = " + QByteArray::number(kNewFormatVersion) + "; BEGIN",
            file);
    execute(handle.get(),
            QByteArray("CREATE TABLE ") + kIdsTable +
                "(name TEXT PRIMARY KEY, next INTEGER NOT NULL) WITHOUT ROWID",
            file);
    for (size_t i = 0; i < tables.size(); ++i) {
        for (const QByteArray& sql :
             creationSql(describeSource(tables[i], static_cast<int>(i) + 1)))
            execute(handle.get(), sql, tables[i].name);
    }
    execute(handle.get(), "COMMIT", file);
}

void insertAll(StoredTable& table, std::vector<QByteArray>& records) {
    for (QByteArray& record : records)
        table.insert(record);
}

void insertPriceLevels(StoredTable& table) {
    const int number = table.layout().indexOf(QStringLiteral("Nro"));
    const int name = table.layout().indexOf(QStringLiteral("Nimi"));
    for (int level = 1; level <= kPriceLevels; ++level) {
        QByteArray record = table.emptyRecord();
        auto* bytes = reinterpret_cast<uchar*>(record.data());
        writeValue(table.layout().field(number), bytes, level, table.name());
        writeValue(table.layout().field(name), bytes, QStringLiteral("Hinta %1").arg(level),
                   table.name());
        table.insert(record);
    }
}

void fillNewCompany(const QString& file, const std::vector<TableSource>& tables) {
    Connection connection(file);
    connection.inTransaction([&] {
        CatalogueRows rows = catalogueRows(tables);
        insertAll(connection.table(kFileTable), rows.files);
        insertAll(connection.table(kFieldTable), rows.fields);
        insertAll(connection.table(kIndexTable), rows.indexes);
        connection.forgetCatalogue();
        for (const TableSource& table : tables) {
            execute(connection.db(), virtualTableSql(table.name), table.name);
            if (isNamed(table, QStringLiteral("HINTATASO")))
                insertPriceLevels(connection.table(table.name));
        }
    });
}

}  // namespace

}  // namespace embedded

void createEmbedded(const QString& folder, const std::vector<TableSource>& tables) {
    using namespace embedded;
    const QString file = companyFile(folder);
    if (QFile::exists(file))
        throw DataError(ErrorKind::Engine, file,
                        QStringLiteral("the folder has a company already"));
    const bool madeFolder = !QFileInfo::exists(folder);
    if (!QDir().mkpath(folder))
        throw DataError(ErrorKind::Io, folder, QStringLiteral("the folder cannot be made"));
    const QString unfinished = file + QStringLiteral(".new");
    try {
        removeDatabaseFiles(unfinished);
        const std::vector<TableSource> all = withCatalogue(tables);
        makeTables(unfinished, all);
        fillNewCompany(unfinished, all);
        QFile::remove(Connection::lockFileName(unfinished));
        if (!QFile::rename(unfinished, file))
            throw DataError(ErrorKind::Io, file,
                            QStringLiteral("the new database cannot be named"));
    } catch (...) {
        removeDatabaseFiles(unfinished);
        if (madeFolder)
            QDir().rmdir(folder);
        throw;
    }
}

}  // namespace engines
