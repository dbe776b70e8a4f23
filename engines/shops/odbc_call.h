#pragma once

#ifdef _WIN32
#include <windows.h>
#define SQL_NOUNICODEMAP  // keeps the names of the 8-bit calls
#endif
#include <sql.h>
#include <sqlext.h>

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

#include "engines/data_names.h"
#include "engines/shops/dialect.h"

/// Calls of the driver manager go through odbcCall(), failures through diagnose().
namespace engines::shops {

/// Diagnostics of a handle's last call.
struct OdbcDiagnosis {
    QByteArray state;  ///< SQLSTATE; empty without diagnostics
    int native = 0;
    QString message;
};

OdbcDiagnosis diagnose(SQLSMALLINT handleType, SQLHANDLE handle, const Dialect& dialect);

/// 8-bit text of the ANSI calls.
QByteArray toDriver(const QString& text, const Dialect& dialect);
QString fromDriver(const char* bytes, qsizetype length, const Dialect& dialect);

bool isOdbcTraced();
void setOdbcTraced(bool on);
void traceOdbc(const char* function, SQLRETURN code, qint64 microseconds);
void traceOdbc(const QString& text);

/// Calls a function of the driver manager; traces it if tracing is on.
template <typename... Parameters, typename... Arguments>
SQLRETURN odbcCall(const char* name, SQLRETURN(SQL_API* function)(Parameters...),
                   Arguments... arguments) {
    if (!isOdbcTraced())
        return function(arguments...);
    QElapsedTimer timer;
    timer.start();
    const SQLRETURN code = function(arguments...);
    traceOdbc(name, code, timer.nsecsElapsed() / 1000);
    return code;
}

inline bool odbcSucceeded(SQLRETURN code) {
    return code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO;
}

}  // namespace engines::shops
