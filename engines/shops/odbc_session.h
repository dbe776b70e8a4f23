#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "engines/data_names.h"
#include "engines/shops/guarded_thread.h"
#include "engines/shops/odbc_call.h"
#include "engines/shops/odbc_connection.h"

namespace engines::shops {

/// The driver manager's handles of one connection. Statements on it may outlive its session; it is
/// closed by then, and theirs with it.
struct OdbcHandles {
    OdbcHandles() = default;
    ~OdbcHandles();
    OdbcHandles(const OdbcHandles&) = delete;
    OdbcHandles& operator=(const OdbcHandles&) = delete;

    /// Disconnects, which frees the handles of statements as well, and marks the connection as
    /// lost.
    void close();

    /// Throws the DataError of the last call on a handle; a connection that is gone is marked.
    /// `where` names the statement or data source.
    [[noreturn]] void fail(SQLSMALLINT handleType, SQLHANDLE handle, const QString& where);

    SQLHENV environment = SQL_NULL_HENV;
    SQLHDBC connection = SQL_NULL_HDBC;
    bool isConnected = false;
    const Dialect* dialect = nullptr;
    std::atomic<bool> isLost{false};
    /// A call never came back: the driver is inside of it, and no handle may be touched again.
    std::atomic<bool> isAbandoned{false};
};

/// One time connected: from the attempt to the loss of the connection or its end.
class OdbcSession {
  public:
    /// @throws DataError(NoConnection).
    explicit OdbcSession(const OdbcSettings& settings);
    ~OdbcSession();
    OdbcSession(const OdbcSession&) = delete;
    OdbcSession& operator=(const OdbcSession&) = delete;

    const std::shared_ptr<OdbcHandles>& handles() const { return m_handles; }
    bool isLost() const { return m_handles->isLost; }

    /// Runs a job that calls the driver; it holds all that it touches. @throws what the job throws,
    /// and DataError(NoConnection) when the limit is over: then the session is lost.
    void guarded(std::function<void()> job, std::chrono::milliseconds limit, const QString& where);

    /// Runs a statement of the dialect's own.
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
