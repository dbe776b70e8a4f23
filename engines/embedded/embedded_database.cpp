#include "engines/embedded/embedded_database.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <algorithm>

#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/sql_statement.h"
#include "engines/embedded/table_file.h"

namespace engines {

namespace embedded {

namespace {

class EmbeddedDatabase : public Database {
  public:
    EmbeddedDatabase(QString name, const QString& fileName)
        : m_name(std::move(name)), m_connection(std::make_shared<Connection>(fileName)) {
        const QSet<QString> stored = storedTables(m_connection->db());
        for (const QString& table : m_connection->catalogue().tableNames()) {
            if (!stored.contains(foldedName(table)))
                throw DataError(
                    ErrorKind::Damaged, table,
                    QStringLiteral("the catalogue lists the table, but it is not stored"))
                    .inFinnish(QStringLiteral("taulu on luettelossa, mutta sitä ei ole"));
        }
    }

    QString name() const override { return m_name; }

    QStringList tableNames() override {
        QStringList names = readCatalogue(m_connection->db()).tableNames();  // as it is now
        names.sort(Qt::CaseInsensitive);
        return names;
    }

    std::unique_ptr<TableFile> openTable(const QString& tableName) override {
        return std::make_unique<EmbeddedTableFile>(m_connection, m_connection->table(tableName));
    }

    std::unique_ptr<SqlStatement> prepare(const QString& sql) override {
        return std::make_unique<EmbeddedSqlStatement>(m_connection, sql);
    }

    void setLockWait(std::chrono::milliseconds wait) override { m_connection->lockWait = wait; }
    bool beginRun() override { return m_connection->locks().beginRun(); }
    void endRun() override { m_connection->locks().endRun(); }
    RunJournal* journal() override { return &m_connection->journal(); }
    void deferFlushes(bool on) override { m_connection->deferFlushes(on); }
    void flush() override { m_connection->flush(); }
    void inTransaction(const std::function<void()>& body) override {
        m_connection->inTransaction(body);
    }

  private:
    QString m_name;
    std::shared_ptr<Connection> m_connection;
};

}  // namespace

QString companyFile(const QString& folder) {
    return QDir(folder).filePath(kEmbeddedFileName);
}

QSet<QString> storedTables(sqlite3* db) {
    Statement names(db,
                    "SELECT substr(name, 5) FROM sqlite_master "
                    "WHERE type = 'table' AND substr(name, 1, 4) = 'rec_'");
    QSet<QString> tables;
    while (names.step())
        tables.insert(foldedName(names.text(0)));
    return tables;
}

}  // namespace embedded

QString embeddedLibraryVersion() {
    return QLatin1String(sqlite3_libversion());
}

bool hasEmbeddedDatabase(const QString& folder) {
    return QFile::exists(embedded::companyFile(folder));
}

std::unique_ptr<Database> openEmbedded(const QString& companyName, const QString& folder) {
    return std::make_unique<embedded::EmbeddedDatabase>(companyName, embedded::companyFile(folder));
}

}  // namespace engines
