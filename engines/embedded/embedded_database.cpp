#include "engines/embedded/embedded_database.h"

#include <QDir>
#include <QSet>
#include <algorithm>
#include <filesystem>

#include "data/system_path.h"
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
                    .inFinnish(
                        QStringLiteral("taulu on hakemistossa, mutta sitä ei ole tiedostossa"));
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
    bool joinsReadAndStatement() const override { return true; }
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
    // A link to a file that is not there counts: opening it says so.
    const QString file = embedded::companyFile(folder);
    std::error_code problem;
    const std::filesystem::file_status found = std::filesystem::symlink_status(
        std::filesystem::path(systemPath(file).toStdU16String()), problem);
    if (found.type() != std::filesystem::file_type::none)
        return std::filesystem::exists(found);
    throw DataError(ErrorKind::NoConnection, folder,
                    QStringLiteral("the folder cannot be read: %1")
                        .arg(QString::fromStdString(problem.message())),
                    problem.value())
        .inFinnish(QStringLiteral("kansiota ei voi lukea"),
                   QStringLiteral("Tarkista kansion käyttöoikeudet ja verkkoyhteys."));
}

std::unique_ptr<Database> openEmbedded(const QString& companyName, const QString& folder) {
    return std::make_unique<embedded::EmbeddedDatabase>(companyName, embedded::companyFile(folder));
}

}  // namespace engines
