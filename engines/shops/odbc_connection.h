#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/shops/dialect.h"

namespace engines::shops {

/// How a data source is reached. No user name is given unless one is set: the data source's own
/// settings supply it.
struct OdbcSettings {
    QString dataSource;
    QString userName;
    QString password;
    QString attributes;  ///< more of the connection string: "KEY=VALUE;KEY=VALUE"
    /// An attempt to connect ends in an error after this time, whatever the driver does.
    std::chrono::milliseconds connectLimit{15000};
    /// The same for one statement or one part of its result; the connection is lost then.
    std::chrono::milliseconds statementLimit{60000};
};

class OdbcLink;

/// One connection to a SQL database over the ODBC driver manager. A connection that is lost is told
/// by the statement that met it (DataError NoConnection); the next statement connects anew. A
/// statement is sent again only when a lock refused it and it has changed nothing. For one thread.
class OdbcConnection {
  public:
    /// @throws DataError(NoConnection) with the driver manager's or the driver's text.
    static std::unique_ptr<OdbcConnection> connect(const OdbcSettings& settings);
    ~OdbcConnection();
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    /// A statement with named parameters; its rows hold the values that the embedded engine gives.
    /// A short cache keeps prepared statements by text. May outlive the connection, closed then.
    /// @throws DataError(Syntax, NoSuchTable, NoSuchField, NoConnection ...).
    std::unique_ptr<SqlStatement> prepare(const QString& sql);

    /// As Database::inTransaction.
    void inTransaction(const std::function<void()>& body);

    /// What is peculiar to the engine that the data source names.
    const Dialect& dialect() const;

    /// How long a statement waits for a lock; default 2000 ms. A server that waits by itself and
    /// cannot be told how long waits to the statement's limit.
    void setLockWait(std::chrono::milliseconds wait);

    /// Called before each statement that returns no rows when the dialect says that record locks of
    /// the client library stop the same program's SQL (Dialect::recordLocksStopSql).
    void setBeforeWrite(std::function<void()> hook);

    /// Every call into a driver goes to the debugger output: name, outcome, microseconds; with the
    /// texts of statements. For all connections of the process.
    static void setTracing(bool on);

  private:
    explicit OdbcConnection(std::shared_ptr<OdbcLink> link);
    std::shared_ptr<OdbcLink> m_link;
};

}  // namespace engines::shops
