#include "engines/shops/shops_database.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

#include "data/lock/lock_file.h"
#include "engines/shops/odbc_connection.h"
#include "engines/shops/separate_journal.h"
#include "engines/shops/shops_tables.h"

namespace engines::shops {

namespace {

// In the folder of the record files; its first byte is locked during a run.
const QString kRunLockFile = QStringLiteral("TAKSAVAIHE.LCK");

OdbcSettings odbcSettings(const ShopsDatabaseSettings& settings) {
    return {settings.dataSource.isEmpty() ? settings.name : settings.dataSource,
            settings.userName,
            settings.password,
            settings.odbcAttributes,
            settings.connectLimit,
            settings.statementLimit};
}

/// Records over the client library, SQL over ODBC: two sessions of the same engine.
class ShopsDatabase : public Database {
  public:
    explicit ShopsDatabase(const ShopsDatabaseSettings& settings)
        : m_settings(settings),
          m_records(settings),
          m_sql(OdbcConnection::connect(odbcSettings(settings))),
          m_journal(
              settings.folder, [this](const QString& table) { return m_records.openTable(table); },
              [this] { return runLock().runGoesOn(); }) {}

    QString name() const override { return m_settings.name; }
    QStringList tableNames() override { return m_records.tableNames(); }
    std::unique_ptr<TableFile> openTable(const QString& tableName) override {
        return journaled(m_records.openTable(tableName), m_journal);
    }
    std::unique_ptr<SqlStatement> prepare(const QString& sql) override {
        return journaled(m_sql->prepare(sql), sql, m_journal, *this);
    }
    RunJournal* journal() override { return &m_journal; }
    void setLockWait(std::chrono::milliseconds wait) override {
        m_records.setLockWait(wait);
        m_sql->setLockWait(wait);
    }
    bool statementsPassRecordLocks() const override { return !m_sql->dialect().recordLocksStopSql; }

    bool beginRun() override { return runLock().beginRun(); }
    void endRun() override {
        if (m_runLock)
            m_runLock->endRun();
    }

    void inTransaction(const std::function<void()>& body) override {
        m_records.inTransaction([&] { m_sql->inTransaction(body); });
    }

  private:
    LockFile& runLock() {
        if (!m_runLock)
            m_runLock = std::make_unique<LockFile>(QDir(m_settings.folder).filePath(kRunLockFile));
        return *m_runLock;
    }

    ShopsDatabaseSettings m_settings;
    ShopsTables m_records;
    std::unique_ptr<OdbcConnection> m_sql;
    std::unique_ptr<LockFile> m_runLock;
    SeparateJournal m_journal;
};

}  // namespace

std::unique_ptr<Database> openShopsDatabase(const ShopsDatabaseSettings& settings) {
    return std::make_unique<ShopsDatabase>(settings);
}

QString copyShopsJournal(const QString& companyFolder, Database& company, const QString& folder) {
    const QString from = SeparateJournal::fileIn(companyFolder);
    const QString to = SeparateJournal::fileIn(folder);
    if (!QFileInfo::exists(from))
        return {};
    // with what a killed program was about to undo
    for (const QString& suffix : {QString(), QStringLiteral("-journal")}) {
        QFile file(from + suffix);
        if (file.exists() && !file.copy(to + suffix))
            throw DataError(ErrorKind::Io, file.fileName(), file.errorString());
    }
    SeparateJournal copy(
        folder, [&company](const QString& table) { return company.openTable(table); },
        [] { return false; });
    copy.runs();
    return to;
}

bool runGoesOnInShops(const QString& companyFolder) {
    const QString file = QDir(companyFolder).filePath(kRunLockFile);
    return QFileInfo::exists(file) && LockFile(file).runGoesOn();
}

}  // namespace engines::shops
