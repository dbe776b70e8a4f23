#include "engines/shops/odbc_call.h"

#include <QDebug>
#include <algorithm>
#include <array>
#include <atomic>

#include "data/windows1252.h"

namespace engines::shops {

namespace {

std::atomic<bool>& traced() {
    static std::atomic<bool> on{false};
    return on;
}

}  // namespace

bool isOdbcTraced() {
    return traced().load(std::memory_order_relaxed);
}

void setOdbcTraced(bool on) {
    traced() = on;
}

void traceOdbc(const char* function, SQLRETURN code, qint64 microseconds) {
    qDebug().noquote().nospace() << "odbc " << function << " = " << code << " (" << microseconds
                                 << " us)";
}

void traceOdbc(const QString& text) {
    if (isOdbcTraced())
        qDebug().noquote() << "odbc" << text;
}

QByteArray toDriver(const QString& text, const Dialect& dialect) {
    if (dialect.text == Dialect::Text::Utf8)
        return text.toUtf8();
    QByteArray bytes;
    qsizetype bad = -1;
    if (!toWindows1252(text, bytes, &bad))
        throw DataError(ErrorKind::BadValue, QString(),
                        QStringLiteral("\"%1\": the character at place %2 is none of Windows-1252")
                            .arg(text)
                            .arg(bad + 1));
    return bytes;
}

QString fromDriver(const char* bytes, qsizetype length, const Dialect& dialect) {
    return dialect.text == Dialect::Text::Utf8 ? QString::fromUtf8(bytes, length)
                                               : fromWindows1252(bytes, length);
}

OdbcDiagnosis diagnose(SQLSMALLINT handleType, SQLHANDLE handle, const Dialect& dialect) {
    OdbcDiagnosis diagnosis;
    // The first record is the most important; further ones add details.
    for (SQLSMALLINT record = 1; record <= 4; ++record) {
        std::array<SQLCHAR, SQL_SQLSTATE_SIZE + 1> state{};
        std::array<SQLCHAR, SQL_MAX_MESSAGE_LENGTH> message{};
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        const SQLRETURN code = SQLGetDiagRec(handleType, handle, record, state.data(), &native,
                                             message.data(), message.size(), &length);
        if (!odbcSucceeded(code))
            break;
        const auto fits = static_cast<SQLSMALLINT>(message.size() - 1);
        const QString text = fromDriver(reinterpret_cast<const char*>(message.data()),
                                        std::clamp<SQLSMALLINT>(length, 0, fits), dialect);
        if (record == 1) {
            diagnosis = {QByteArray(reinterpret_cast<const char*>(state.data())), native, text};
        } else if (!diagnosis.message.contains(text)) {
            diagnosis.message += QStringLiteral("; ") + text;
        }
    }
    return diagnosis;
}

}  // namespace engines::shops
