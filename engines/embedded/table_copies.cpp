#include "data/engine/table_source.h"
#include "engines/embedded/catalogue.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/embedded_database.h"
#include "engines/embedded/stored_table.h"

namespace engines {

namespace embedded {

namespace {

constexpr int kBatch = 1000;

bool isCatalogue(const QString& table) {
    return QStringList{kFileTable, kFieldTable, kIndexTable}.contains(table, Qt::CaseInsensitive);
}

bool copyRecords(TableFile& source, Connection& connection, const TableProgress& progress) {
    const QString& name = source.layout().tableName();
    StoredTable& target = connection.table(name);
    const qint64 total = source.recordCount();
    qint64 done = 0;
    std::vector<StoredRecord> batch;
    for (std::optional<RecordId> last; done == 0 || !batch.empty();) {
        if (!progress(name, done, total))
            return false;
        batch.clear();
        last = source.visitStored(last, kBatch, [&batch](RecordId id, const QByteArray& bytes) {
            batch.push_back({id, bytes});
            return true;
        });
        if (batch.empty())
            break;
        connection.inTransaction([&] {
            for (const StoredRecord& record : batch)
                target.insertAs(record.id, record.bytes);
        });
        done += static_cast<qint64>(batch.size());
    }
    return true;
}

}  // namespace

}  // namespace embedded

bool createEmbeddedCopy(const QString& folder,
                        const std::vector<std::unique_ptr<TableFile>>& tables,
                        const TableProgress& progress) {
    using namespace embedded;
    std::vector<TableSource> sources;
    for (const std::unique_ptr<TableFile>& table : tables) {
        if (!isCatalogue(table->layout().tableName()))
            sources.push_back(tableSourceOf(*table));
    }
    createEmbedded(folder, sources);
    const QString file = companyFile(folder);
    Connection connection(file);
    execute(connection.db(), "PRAGMA synchronous = OFF", file);
    for (const std::unique_ptr<TableFile>& table : tables) {
        const QString& name = table->layout().tableName();
        if (isCatalogue(name))
            continue;
        // a new company has price levels
        execute(connection.db(), "DELETE FROM " + quotedName(QStringLiteral("rec_") + name), name);
        if (!copyRecords(*table, connection, progress))
            return false;
    }
    return true;
}

void importJournal(const QString& folder, const QString& journalFile) {
    using namespace embedded;
    const SqliteHandle source(journalFile, SqliteHandle::Mode::ReadWrite);
    Connection connection(companyFile(folder));
    connection.journal().takeFrom(source.get());
}

}  // namespace engines
