#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>
#include <string>
#include <vector>

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"
#include "data/sql/uni_query.h"
#include "engines/embedded/embedded_database.h"
#include "engines/shops/odbc_connection.h"

namespace test {

/// SQL alone over ODBC, behind the interface that queries are written against.
class OdbcDatabase : public data::Database {
  public:
    explicit OdbcDatabase(const engines::shops::OdbcSettings& settings)
        : connection(engines::shops::OdbcConnection::connect(settings)) {}

    QString name() const override { return QStringLiteral("odbc"); }
    QStringList tableNames() override { return {}; }
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        throw data::DataError(data::ErrorKind::NoSuchTable, tableName, QStringLiteral("SQL alone"));
    }
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override {
        return connection->prepare(sql);
    }
    void setLockWait(std::chrono::milliseconds wait) override { connection->setLockWait(wait); }
    bool beginRun() override { return true; }
    void endRun() override {}
    void inTransaction(const std::function<void()>& body) override {
        connection->inTransaction(body);
    }

    std::unique_ptr<engines::shops::OdbcConnection> connection;
};

/// A SQL engine of the tests, by name: "embedded", "sqlite" (the embedded engine's file through its
/// loadable module and an ODBC driver), "virtuoso", "mariadb". The servers and the data sources are
/// those that scripts/sql_servers.sh has started.
class SqlEngine {
  public:
    /// An engine with the given tables of the dictionary, all of them empty.
    SqlEngine(const QString& name, const QStringList& tables);

    /// False when the engine is not there and need not be; where scripts/test.sh runs it must.
    static bool isAvailable(const QString& name);

    /// A connection of its own.
    std::unique_ptr<data::Database> connect(
        std::chrono::milliseconds statementLimit = std::chrono::seconds(60)) const;
    data::Database& database() const { return *m_database; }
    const QString& name() const { return m_name; }
    QString folder() const { return m_folder.path(); }  ///< of the embedded engine's file
    engines::shops::OdbcSettings settings() const;

  private:
    void createTables(const QStringList& tables) const;

    QString m_name;
    QTemporaryDir m_folder;
    std::unique_ptr<data::Database> m_database;
};

/// Runs a statement without rows.
qint64 exec(data::Database& database, const QString& sql,
            const std::vector<std::pair<QString, data::Value>>& with = {});

/// Rows of a query: cells joined by '|', NULL as "NULL", doubles in their shortest form.
using Rows = std::vector<std::string>;
Rows rows(data::Database& database, const QString& sql,
          const std::vector<std::pair<QString, data::Value>>& with = {});

/// Copies a table's rows by INSERT statements.
void copyTable(data::Database& from, data::Database& to, const data::TableSource& table);

/// The SQL columns of a table: fields without those that only name bits of other fields' bytes,
/// but for the bits that SQL of the product names.
std::vector<data::TFieldCacheItem> sqlFields(const data::TableSource& table);

}  // namespace test
