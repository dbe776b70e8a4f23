#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "engines/data_names.h"
#include "engines/shops/prepared_odbc.h"

namespace engines::shops {

/// Shared by a connection's statements: the current session, the cache of prepared statements, the
/// open transaction.
class OdbcLink {
  public:
    explicit OdbcLink(OdbcSettings settings);
    ~OdbcLink();
    OdbcLink(const OdbcLink&) = delete;
    OdbcLink& operator=(const OdbcLink&) = delete;

    /// A statement of the current session, cached or newly prepared; reconnects if the connection
    /// was lost. Give it back with returnStatement().
    std::shared_ptr<PreparedOdbc> prepare(const QString& sql);
    void returnStatement(std::shared_ptr<PreparedOdbc> statement);

    /// Runs a job on the statement's session within the statement time limit.
    void guarded(const PreparedOdbc& statement, std::function<void()> job);

    void inTransaction(const std::function<void()>& body);
    bool isInTransaction() const { return m_inTransaction; }
    const Dialect& dialect() const { return *m_dialect; }
    std::chrono::milliseconds lockWait() const { return m_lockWait; }
    void setLockWait(std::chrono::milliseconds wait);
    /// Ends the session; statements still in use fail afterwards.
    void close();

  private:
    OdbcSession& session();
    void connect();
    /// Frees a statement's handle in the session's thread.
    void discard(std::shared_ptr<PreparedOdbc> unwanted);
    void leaveTransaction();
    void sendLockWait();
    bool isDateColumn(const QString& name);
    void readDateColumns();

    OdbcSettings m_settings;
    std::shared_ptr<OdbcSession> m_session;
    const Dialect* m_dialect = nullptr;
    std::chrono::milliseconds m_lockWait{2000};
    std::vector<std::shared_ptr<PreparedOdbc>> m_cache;  // oldest first
    std::optional<QStringList> m_dateColumns;            // in lower case
    bool m_inTransaction = false;
    bool m_isClosed = false;
};

/// A SQL statement over ODBC; returned to the connection's cache when destroyed.
class OdbcStatement : public SqlStatement {
  public:
    OdbcStatement(std::shared_ptr<OdbcLink> link, const QString& sql);
    ~OdbcStatement() override;
    OdbcStatement(const OdbcStatement&) = delete;
    OdbcStatement& operator=(const OdbcStatement&) = delete;

    QStringList parameterNames() const override;
    void bind(const QString& name, const Value& value) override;
    const std::vector<SqlColumn>& columns() const override;
    bool step() override;
    Value value(int column) const override;
    qint64 execute() override;
    void reset() override;

  private:
    qint64 run(bool fetches);
    qint64 runOnce(bool fetches);

    std::shared_ptr<OdbcLink> m_link;
    QString m_sql;
    std::shared_ptr<PreparedOdbc> m_prepared;
    std::vector<Value> m_values;
    size_t m_nextBind = 0;  // expected index of the next parameter
    bool m_distinct = false;
    bool m_hasRun = false;
    size_t m_row = 0;  // within the last batch
};

}  // namespace engines::shops
