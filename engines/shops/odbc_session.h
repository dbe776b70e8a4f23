#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "engines/data_names.h"
#include "engines/shops/guarded_thread.h"
#include "engines/shops/odbc_call.h"
#include "engines/shops/odbc_connection.h"

namespace engines::shops {

/// Driver manager handles of one connection. Statements may outlive their session; connection and
/// statement handles are freed by then.
struct OdbcHandles {
    OdbcHandles() = default;
    ~OdbcHandles();
    OdbcHandles(const OdbcHandles&) = delete;
    OdbcHandles& operator=(const OdbcHandles&) = delete;

    /// Disconnects, which also frees the statement handles, and marks the connection as lost.
    void close();

    /// Throws the DataError of a handle's last call; marks a lost connection. `where`: statement or
    /// data source.
    [[noreturn]] void fail(SQLSMALLINT handleType, SQLHANDLE handle, const QString& where);

    SQLHENV environment = SQL_NULL_HENV;
    SQLHDBC connection = SQL_NULL_HDBC;
    bool isConnected = false;
    const Dialect* dialect = nullptr;
    std::atomic<bool> isLost{false};
    /// A call never returned: the driver is still inside it, so no handle may be used.
    std::atomic<bool> isAbandoned{false};
};

/// One connection, from the attempt to connect to its loss or end.
class OdbcSession {
  public:
    /// @throws DataError(NoConnection).
    explicit OdbcSession(const OdbcSettings& settings);
    ~OdbcSession();
    OdbcSession(const OdbcSession&) = delete;
    OdbcSession& operator=(const OdbcSession&) = delete;

    const std::shared_ptr<OdbcHandles>& handles() const { return m_handles; }
    bool isLost() const { return m_handles->isLost; }

    /// Runs a job that calls the driver; the job owns everything it uses. @throws what the job
    /// throws, and DataError(NoConnection) at the time limit: the session is lost then.
    void guarded(std::function<void()> job, std::chrono::milliseconds limit, const QString& where);

    /// Runs one of the dialect's own statements.
    void execute(const QByteArray& sql);
    void setAutoCommit(bool on);
    /// Ends a transaction.
    void endTransaction(bool commit);

    std::chrono::milliseconds statementLimit() const { return m_statementLimit; }

  private:
    QString m_dataSource;
    std::chrono::milliseconds m_statementLimit;
    std::shared_ptr<OdbcHandles> m_handles;
    GuardedThread m_thread;
};

}  // namespace engines::shops
