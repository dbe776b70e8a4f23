#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>
#include <string>
#include <vector>

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"
#include "engines/embedded/embedded_database.h"
#include "engines/shops/odbc_connection.h"
#include "tests/support/checks.h"
#include "tests/support/sql.h"

namespace test {

/// A database with SQL over ODBC and no record access.
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

/// Column that numbers a table's rows; see RowNumbers.
inline const QString kRowNumber = QStringLiteral("RIVITUNNUS");
/// Whether a server's tables have a column that numbers the rows as they are inserted.
enum class RowNumbers { None, Added };

/// A SQL engine of the tests: "embedded", "sqlite" (the embedded engine's file through its loadable
/// module and an ODBC driver), "virtuoso" or "mariadb". scripts/sql_servers.sh starts the servers
/// and defines the data sources.
class SqlEngine {
  public:
    /// Creates the given tables of the dictionary, empty.
    SqlEngine(const QString& name, const QStringList& tables,
              RowNumbers numbers = RowNumbers::None);

    /// False where the servers are not started; scripts/test.sh starts them.
    static bool isAvailable(const QString& name);

    /// Opens another connection.
    std::unique_ptr<data::Database> connect(
        std::chrono::milliseconds statementLimit = std::chrono::seconds(60)) const;
    data::Database& database() const { return *m_database; }
    const QString& name() const { return m_name; }
    QString folder() const { return m_folder.path(); }  ///< with the embedded engine's file
    engines::shops::OdbcSettings settings() const;

  private:
    void createTables(const QStringList& tables, RowNumbers numbers) const;

    QString m_name;
    QTemporaryDir m_folder;
    std::unique_ptr<data::Database> m_database;
};

/// A table of the dictionary.
data::TableSource sourceOf(const QString& name);

QString quoted(const QString& name);

/// A field's value as a server's column holds it: NULL for empty dates and times.
data::Value sqlValue(const data::TFieldCacheItem& field, const uchar* record);

/// Copies a table's rows by INSERT statements.
void copyTable(data::Database& from, data::Database& to, const data::TableSource& table);

/// The SQL columns of a table: no fields for single bits of another field's bytes, except the one
/// that the product's SQL uses.
std::vector<data::TFieldCacheItem> sqlFields(const data::TableSource& table);

}  // namespace test
