#include "engines/shops/odbc_session.h"

#include <algorithm>
#include <array>
#include <utility>

namespace engines::shops {

namespace {

// Closing must not delay the end of the program.
constexpr std::chrono::milliseconds kCloseLimit{5000};

// The ODBC headers define these with C-style casts.
SQLPOINTER asPointer(quintptr value) {
    return reinterpret_cast<SQLPOINTER>(value);
}

// A value of a connection string, in braces if it contains a separator.
QString quotedAttribute(const QString& value) {
    if (!value.contains(QLatin1Char(';')) && !value.startsWith(QLatin1Char('{')))
        return value;
    QString inner = value;
    inner.replace(QLatin1Char('}'), QLatin1String("}}"));
    return QLatin1Char('{') + inner + QLatin1Char('}');
}

QByteArray connectionString(const OdbcSettings& settings, const QString& more) {
    QString text = QStringLiteral("DSN=") + quotedAttribute(settings.dataSource);
    if (!settings.userName.isEmpty())
        text += QStringLiteral(";UID=") + quotedAttribute(settings.userName);
    if (!settings.password.isEmpty())
        text += QStringLiteral(";PWD=") + quotedAttribute(settings.password);
    for (const QString& attributes : {settings.attributes, more}) {
        if (!attributes.isEmpty())
            text += QLatin1Char(';') + attributes;
    }
    return text.toLocal8Bit();
}

SQLUINTEGER secondsOf(std::chrono::milliseconds time) {
    return static_cast<SQLUINTEGER>(std::max<qint64>(1, (time.count() + 999) / 1000));
}

void connectOnce(OdbcHandles& handles, const QByteArray& text, const QString& dataSource) {
    QByteArray in = text;
    std::array<SQLCHAR, 1024> out{};
    SQLSMALLINT outLength = 0;
    const SQLRETURN code = odbcCall(
        "SQLDriverConnect", SQLDriverConnect, handles.connection, SQLHWND{},
        reinterpret_cast<SQLCHAR*>(in.data()), SQLSMALLINT(SQL_NTS), out.data(),
        static_cast<SQLSMALLINT>(out.size()), &outLength, SQLUSMALLINT(SQL_DRIVER_NOPROMPT));
    if (!odbcSucceeded(code)) {
        const OdbcDiagnosis found = diagnose(SQL_HANDLE_DBC, handles.connection, *handles.dialect);
        throw DataError(
            ErrorKind::NoConnection, dataSource,
            found.message.isEmpty() ? QStringLiteral("the driver gives no reason") : found.message,
            found.native);
    }
    handles.isConnected = true;
}

QString infoText(const OdbcHandles& handles, SQLUSMALLINT what) {
    std::array<char, 256> text{};
    SQLSMALLINT length = 0;
    const SQLRETURN code =
        odbcCall("SQLGetInfo", SQLGetInfo, handles.connection, what, SQLPOINTER(text.data()),
                 static_cast<SQLSMALLINT>(text.size()), &length);
    return odbcSucceeded(code) ? QString::fromLatin1(text.data()) : QString();
}

void connectHandles(OdbcHandles& handles, const OdbcSettings& settings) {
    if (!odbcSucceeded(odbcCall("SQLAllocHandle", SQLAllocHandle, SQLSMALLINT(SQL_HANDLE_ENV),
                                SQLHANDLE(SQL_NULL_HANDLE), &handles.environment)))
        throw DataError(ErrorKind::NoConnection, settings.dataSource,
                        QStringLiteral("the ODBC driver manager does not start"))
            .inFinnish(QStringLiteral("ODBC-ajurinhallinta ei käynnisty"));
    odbcCall("SQLSetEnvAttr", SQLSetEnvAttr, handles.environment, SQLINTEGER(SQL_ATTR_ODBC_VERSION),
             asPointer(SQL_OV_ODBC3), SQLINTEGER(0));
    if (!odbcSucceeded(odbcCall("SQLAllocHandle", SQLAllocHandle, SQLSMALLINT(SQL_HANDLE_DBC),
                                SQLHANDLE(handles.environment), &handles.connection)))
        handles.fail(SQL_HANDLE_ENV, handles.environment, settings.dataSource);
    // Drivers without this limit return an error; the guarding thread applies it.
    odbcCall("SQLSetConnectAttr", SQLSetConnectAttr, handles.connection,
             SQLINTEGER(SQL_ATTR_LOGIN_TIMEOUT), asPointer(secondsOf(settings.connectLimit)),
             SQLINTEGER(SQL_IS_UINTEGER));
    connectOnce(handles, connectionString(settings, QString()), settings.dataSource);
    handles.dialect = &dialectFor(infoText(handles, SQL_DBMS_NAME));
    if (handles.dialect->attributes != nullptr) {
        odbcCall("SQLDisconnect", SQLDisconnect, handles.connection);
        handles.isConnected = false;
        connectOnce(handles,
                    connectionString(settings, QString::fromLatin1(handles.dialect->attributes)),
                    settings.dataSource);
    }
}

}  // namespace

OdbcHandles::~OdbcHandles() {
    if (!isAbandoned)
        close();
}

void OdbcHandles::close() {
    isLost = true;
    if (std::exchange(isConnected, false))
        odbcCall("SQLDisconnect", SQLDisconnect, connection);
    if (connection != SQL_NULL_HDBC)
        odbcCall("SQLFreeHandle", SQLFreeHandle, SQLSMALLINT(SQL_HANDLE_DBC),
                 SQLHANDLE(std::exchange(connection, nullptr)));
    if (environment != SQL_NULL_HENV)
        odbcCall("SQLFreeHandle", SQLFreeHandle, SQLSMALLINT(SQL_HANDLE_ENV),
                 SQLHANDLE(std::exchange(environment, nullptr)));
}

void OdbcHandles::fail(SQLSMALLINT handleType, SQLHANDLE handle, const QString& where) {
    const OdbcDiagnosis found = diagnose(handleType, handle, *dialect);
    const ErrorKind kind = odbcErrorKind(*dialect, found.state, found.native, found.message);
    if (kind == ErrorKind::NoConnection)
        isLost = true;
    traceOdbc(QStringLiteral("%1 %2: %3")
                  .arg(QString::fromLatin1(found.state))
                  .arg(found.native)
                  .arg(found.message));
    const QString text =
        found.message.isEmpty() ? QStringLiteral("the driver gives no reason") : found.message;
    throw DataError(kind, QString(), QStringLiteral("%1: \"%2\"").arg(text, where), found.native);
}

OdbcSession::OdbcSession(const OdbcSettings& settings)
    : m_dataSource(settings.dataSource),
      m_statementLimit(settings.statementLimit),
      m_handles(std::make_shared<OdbcHandles>()) {
    m_handles->dialect = &dialectFor(QString());
    guarded([handles = m_handles, settings] { connectHandles(*handles, settings); },
            settings.connectLimit, m_dataSource);
    if (m_handles->dialect->onConnect != nullptr)
        execute(m_handles->dialect->onConnect);
}

OdbcSession::~OdbcSession() {
    if (m_thread.isAbandoned())
        return;
    try {
        if (!m_thread.run([handles = m_handles] { handles->close(); }, kCloseLimit))
            m_handles->isAbandoned = true;
    } catch (const std::exception& error) {
        traceOdbc(QString::fromUtf8(error.what()));
    }
}

void OdbcSession::guarded(std::function<void()> job, std::chrono::milliseconds limit,
                          const QString& where) {
    if (m_thread.isAbandoned() || !m_thread.run(std::move(job), limit)) {
        m_handles->isAbandoned = true;
        m_handles->isLost = true;
        throw DataError(ErrorKind::NoConnection, m_dataSource,
                        QStringLiteral("no answer within %1 s: \"%2\"")
                            .arg(static_cast<double>(limit.count()) / 1000)
                            .arg(where))
            .inFinnish(
                QStringLiteral("ei vastausta %1 sekunnissa: \"%2\"")
                    .arg(static_cast<double>(limit.count()) / 1000)
                    .arg(where),
                QStringLiteral("Tarkista, että tietokantapalvelin on käynnissä ja verkko toimii."));
    }
}

void OdbcSession::execute(const QByteArray& sql) {
    const auto job = [handles = m_handles, sql] {
        SQLHSTMT statement = SQL_NULL_HSTMT;
        if (!odbcSucceeded(odbcCall("SQLAllocHandle", SQLAllocHandle, SQLSMALLINT(SQL_HANDLE_STMT),
                                    SQLHANDLE(handles->connection), &statement)))
            handles->fail(SQL_HANDLE_DBC, handles->connection, QString::fromLatin1(sql));
        const std::shared_ptr<void> freed(statement, [](SQLHSTMT given) {
            odbcCall("SQLFreeHandle", SQLFreeHandle, SQLSMALLINT(SQL_HANDLE_STMT),
                     SQLHANDLE(given));
        });
        QByteArray text = sql;
        const SQLRETURN code =
            odbcCall("SQLExecDirect", SQLExecDirect, statement,
                     reinterpret_cast<SQLCHAR*>(text.data()), SQLINTEGER(SQL_NTS));
        if (!odbcSucceeded(code) && code != SQL_NO_DATA)
            handles->fail(SQL_HANDLE_STMT, statement, QString::fromLatin1(sql));
    };
    guarded(job, m_statementLimit, QString::fromLatin1(sql));
}

void OdbcSession::setAutoCommit(bool on) {
    const QString where = QStringLiteral("autocommit");
    const auto job = [handles = m_handles, on, where] {
        const SQLRETURN code = odbcCall("SQLSetConnectAttr", SQLSetConnectAttr, handles->connection,
                                        SQLINTEGER(SQL_ATTR_AUTOCOMMIT),
                                        asPointer(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF),
                                        SQLINTEGER(SQL_IS_UINTEGER));
        if (!odbcSucceeded(code))
            handles->fail(SQL_HANDLE_DBC, handles->connection, where);
    };
    guarded(job, m_statementLimit, where);
}

void OdbcSession::endTransaction(bool commit) {
    const QString where = commit ? QStringLiteral("commit") : QStringLiteral("rollback");
    const auto job = [handles = m_handles, commit, where] {
        const SQLRETURN code = odbcCall("SQLEndTran", SQLEndTran, SQLSMALLINT(SQL_HANDLE_DBC),
                                        SQLHANDLE(handles->connection),
                                        SQLSMALLINT(commit ? SQL_COMMIT : SQL_ROLLBACK));
        if (!odbcSucceeded(code))
            handles->fail(SQL_HANDLE_DBC, handles->connection, where);
    };
    guarded(job, m_statementLimit, where);
}

}  // namespace engines::shops
