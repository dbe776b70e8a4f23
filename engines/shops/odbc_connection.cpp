#include "engines/shops/odbc_connection.h"

#include <algorithm>
#include <array>
#include <utility>

#include "engines/shops/odbc_statement.h"

namespace engines::shops {

namespace {

constexpr size_t kMaxCachedStatements = 32;

// The driver's limit is shorter than the guarding thread's, so that the connection survives.
SQLULEN driverSeconds(std::chrono::milliseconds limit) {
    return static_cast<SQLULEN>(std::max<qint64>(1, limit.count() / 1000 - 1));
}

DataError lostInTransaction(const QString& dataSource) {
    return DataError(ErrorKind::NoConnection, dataSource,
                     QStringLiteral("the connection was lost in the transaction"))
        .inFinnish(QStringLiteral("yhteys katkesi kesken tapahtuman"));
}

}  // namespace

// --- the link

OdbcLink::OdbcLink(OdbcSettings settings) : m_settings(std::move(settings)) {
    connect();
}

OdbcLink::~OdbcLink() {
    close();
}

void OdbcLink::connect() {
    m_session.reset();
    m_cache.clear();
    m_session = std::make_shared<OdbcSession>(m_settings);
    m_dialect = m_session->handles()->dialect;
    sendLockWait();
}

OdbcSession& OdbcLink::session() {
    if (m_isClosed)
        throw DataError(ErrorKind::NoConnection, m_settings.dataSource,
                        QStringLiteral("the connection was closed"))
            .inFinnish(QStringLiteral("yhteys on suljettu"));
    if (!m_session || m_session->isLost()) {
        if (m_inTransaction)
            throw lostInTransaction(m_settings.dataSource);
        connect();
    }
    return *m_session;
}

void OdbcLink::close() {
    m_isClosed = true;
    m_session.reset();
    m_cache.clear();
}

std::shared_ptr<PreparedOdbc> OdbcLink::prepare(const QString& sql) {
    OdbcSession& present = session();
    const auto cached = std::find_if(m_cache.begin(), m_cache.end(),
                                     [&sql](const auto& known) { return known->sql() == sql; });
    if (cached != m_cache.end()) {
        std::shared_ptr<PreparedOdbc> statement = std::move(*cached);
        m_cache.erase(cached);
        return statement;
    }
    auto statement = std::make_shared<PreparedOdbc>(
        present.handles(), sql,
        m_dialect->rewritten(sql, [this](const QString& name) { return isDateColumn(name); }));
    const SQLULEN seconds = driverSeconds(present.statementLimit());
    try {
        present.guarded([statement, seconds] { statement->prepare(seconds); },
                        present.statementLimit(), sql);
    } catch (const DataError&) {
        discard(std::move(statement));
        throw;
    }
    return statement;
}

void OdbcLink::returnStatement(std::shared_ptr<PreparedOdbc> statement) {
    if (!statement || !m_session || &statement->handles() != m_session->handles().get() ||
        m_session->isLost())
        return;
    if (statement->isResultOpen()) {
        discard(std::move(statement));
        return;
    }
    m_cache.push_back(std::move(statement));
    if (m_cache.size() <= kMaxCachedStatements)
        return;
    std::shared_ptr<PreparedOdbc> oldest = std::move(m_cache.front());
    m_cache.erase(m_cache.begin());
    discard(std::move(oldest));
}

void OdbcLink::discard(std::shared_ptr<PreparedOdbc> unwanted) {
    if (m_session->isLost())
        return;
    try {
        const QString where = unwanted->sql();
        m_session->guarded([own = std::move(unwanted)]() mutable { own.reset(); },
                           m_session->statementLimit(), where);
    } catch (const DataError& error) {
        traceOdbc(error.english());  // the session is marked as lost
    }
}

void OdbcLink::guarded(const PreparedOdbc& statement, std::function<void()> job) {
    if (!m_session || &statement.handles() != m_session->handles().get())
        throw DataError(ErrorKind::NoConnection, m_settings.dataSource,
                        QStringLiteral("the connection was lost while a result was read"))
            .inFinnish(QStringLiteral("yhteys katkesi, kun tulosta luettiin"));
    m_session->guarded(std::move(job), m_session->statementLimit(), statement.sql());
}

void OdbcLink::inTransaction(const std::function<void()>& body) {
    if (m_inTransaction) {
        body();
        return;
    }
    session().setAutoCommit(false);
    m_inTransaction = true;
    const auto end = [this](bool commit) {
        m_inTransaction = false;
        if (m_session->isLost())
            throw lostInTransaction(m_settings.dataSource);
        try {
            m_session->endTransaction(commit);
            m_session->setAutoCommit(true);
        } catch (const DataError&) {
            leaveTransaction();
            throw;
        }
    };
    try {
        body();
    } catch (...) {
        try {
            end(false);
        } catch (const DataError& error) {
            traceOdbc(error.english());  // a lost connection rolls back its transaction
        }
        throw;
    }
    end(true);
}

// Roll back first: switching to autocommit would commit. If this fails the session is abandoned,
// because its next statements would belong to the old transaction.
void OdbcLink::leaveTransaction() {
    if (m_session->isLost())
        return;
    try {
        m_session->endTransaction(false);
        m_session->setAutoCommit(true);
    } catch (const DataError& error) {
        traceOdbc(error.english());
        m_session->handles()->isLost = true;
    }
}

void OdbcLink::setLockWait(std::chrono::milliseconds wait) {
    m_lockWait = wait;
    if (m_session && !m_session->isLost())
        sendLockWait();
}

void OdbcLink::sendLockWait() {
    if (m_dialect->lockWait == nullptr)
        return;
    const qint64 seconds = std::max<qint64>(1, (m_lockWait.count() + 999) / 1000);
    m_session->execute(QString::fromLatin1(m_dialect->lockWait).arg(seconds).toLatin1());
}

bool OdbcLink::isDateColumn(const QString& name) {
    if (!m_dateColumns)
        readDateColumns();
    return m_dateColumns->contains(name.toLower());
}

// For all tables at once: statements join tables, and a name has the same kind in all of them.
void OdbcLink::readDateColumns() {
    const QString where = QStringLiteral("columns of the tables");
    const auto names = std::make_shared<QStringList>();
    m_session->guarded(
        [handles = m_session->handles(), names, where] {
            SQLHSTMT statement = SQL_NULL_HSTMT;
            if (!odbcSucceeded(odbcCall("SQLAllocHandle", SQLAllocHandle,
                                        SQLSMALLINT(SQL_HANDLE_STMT),
                                        SQLHANDLE(handles->connection), &statement)))
                handles->fail(SQL_HANDLE_DBC, handles->connection, where);
            const std::shared_ptr<void> freed(statement, [](SQLHSTMT given) {
                odbcCall("SQLFreeHandle", SQLFreeHandle, SQLSMALLINT(SQL_HANDLE_STMT),
                         SQLHANDLE(given));
            });
            QByteArray all("%");
            auto* pattern = reinterpret_cast<SQLCHAR*>(all.data());
            SQLCHAR* none = nullptr;
            SQLRETURN code = odbcCall("SQLColumns", SQLColumns, statement, none, SQLSMALLINT(0),
                                      none, SQLSMALLINT(0), pattern, SQLSMALLINT(SQL_NTS), pattern,
                                      SQLSMALLINT(SQL_NTS));
            while (odbcSucceeded(code)) {
                code = odbcCall("SQLFetch", SQLFetch, statement);
                if (!odbcSucceeded(code))
                    break;
                std::array<char, 256> name{};
                SQLSMALLINT type = 0;
                SQLLEN length = 0;
                odbcCall("SQLGetData", SQLGetData, statement, SQLUSMALLINT(4),
                         SQLSMALLINT(SQL_C_CHAR), SQLPOINTER(name.data()),
                         static_cast<SQLLEN>(name.size()), &length);
                odbcCall("SQLGetData", SQLGetData, statement, SQLUSMALLINT(5),
                         SQLSMALLINT(SQL_C_SSHORT), SQLPOINTER(&type), SQLLEN(sizeof type),
                         &length);
                if (columnKind(type, 0) == ColumnKind::Date)
                    names->append(QString::fromLatin1(name.data()).toLower());
            }
            if (code != SQL_NO_DATA)
                handles->fail(SQL_HANDLE_STMT, statement, where);
        },
        m_session->statementLimit(), where);
    names->removeDuplicates();
    m_dateColumns = *names;
}

// --- the connection

OdbcConnection::OdbcConnection(std::shared_ptr<OdbcLink> link) : m_link(std::move(link)) {}

OdbcConnection::~OdbcConnection() {
    m_link->close();
}

std::unique_ptr<OdbcConnection> OdbcConnection::connect(const OdbcSettings& settings) {
    return std::unique_ptr<OdbcConnection>(
        new OdbcConnection(std::make_shared<OdbcLink>(settings)));
}

std::unique_ptr<SqlStatement> OdbcConnection::prepare(const QString& sql) {
    return std::make_unique<OdbcStatement>(m_link, sql);
}

void OdbcConnection::inTransaction(const std::function<void()>& body) {
    m_link->inTransaction(body);
}

const Dialect& OdbcConnection::dialect() const {
    return m_link->dialect();
}

void OdbcConnection::setLockWait(std::chrono::milliseconds wait) {
    m_link->setLockWait(wait);
}

void OdbcConnection::setTracing(bool on) {
    setOdbcTraced(on);
}

}  // namespace engines::shops
