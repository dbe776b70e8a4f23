#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/shops/dialect.h"

namespace engines::shops {

/// Connection settings of a data source. Without a user name the data source's own settings apply.
struct OdbcSettings {
    QString dataSource;
    QString userName;
    QString password;
    QString attributes;  ///< added to the connection string: "KEY=VALUE;KEY=VALUE"
    /// Time limit of a connection attempt, enforced whatever the driver does.
    std::chrono::milliseconds connectLimit{15000};
    /// Time limit of one statement or one fetch; after it the connection is lost.
    std::chrono::milliseconds statementLimit{60000};
};

class OdbcLink;

/// One connection to a SQL database over the ODBC driver manager. If the connection is lost, the
/// current statement fails (DataError NoConnection) and the next one reconnects. A statement is
/// only repeated if a lock refused it before it changed anything. Not thread-safe.
class OdbcConnection {
  public:
    /// @throws DataError(NoConnection) with the message of the driver or driver manager.
    static std::unique_ptr<OdbcConnection> connect(const OdbcSettings& settings);
    ~OdbcConnection();
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    /// A statement with named parameters; its rows have the same values as the embedded engine's.
    /// Prepared statements are cached by text. May outlive the connection, and is closed then.
    /// @throws DataError(Syntax, NoSuchTable, NoSuchField, NoConnection ...).
    std::unique_ptr<SqlStatement> prepare(const QString& sql);

    /// As Database::inTransaction.
    void inTransaction(const std::function<void()>& body);

    /// The dialect of the data source's engine.
    const Dialect& dialect() const;

    /// How long a statement waits for a lock; default 2000 ms. Servers whose lock wait cannot be
    /// set wait until the statement's time limit.
    void setLockWait(std::chrono::milliseconds wait);

    /// Traces every driver call to the debug output: name, result, microseconds, statement texts.
    /// For all connections of the process.
    static void setTracing(bool on);

  private:
    explicit OdbcConnection(std::shared_ptr<OdbcLink> link);
    std::shared_ptr<OdbcLink> m_link;
};

}  // namespace engines::shops
