#include "engines/shops/prepared_odbc.h"

#include <QDateTime>
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "data/record/value_conversion.h"

namespace engines::shops {

namespace {

// Text parameters up to this size are bound once; longer ones are rebound each time, as long texts.
constexpr qsizetype kDefaultTextSize = 255;
constexpr qsizetype kLongText = 4000;
// The shops' engine's type code of 16-bit integers.
constexpr SQLSMALLINT kShopsSmallInteger = 2008;

QString emptyText() {
    return QStringLiteral("");
}

}  // namespace

ColumnKind columnKind(SQLSMALLINT type, SQLSMALLINT scale) {
    switch (type) {
        case kShopsSmallInteger:
            return ColumnKind::Whole16;
        case SQL_BIT:
        case SQL_TINYINT:
        case SQL_SMALLINT:
        case SQL_INTEGER:
        case SQL_BIGINT:
            return ColumnKind::Whole;
        case SQL_DECIMAL:
        case SQL_NUMERIC:
            return scale == 0 ? ColumnKind::Whole : ColumnKind::Real;
        case SQL_REAL:
            return ColumnKind::Single;
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return ColumnKind::Real;
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY:
            return ColumnKind::Bytes;
        case SQL_DATE:
        case SQL_TYPE_DATE:
            return ColumnKind::Date;
        case SQL_TIME:
        case SQL_TYPE_TIME:
            return ColumnKind::Time;
        case SQL_TIMESTAMP:
        case SQL_TYPE_TIMESTAMP:
            return ColumnKind::Timestamp;
        case SQL_CHAR:
        case SQL_WCHAR:
            return ColumnKind::PaddedText;
        default:
            return ColumnKind::Text;
    }
}

PreparedOdbc::PreparedOdbc(std::shared_ptr<OdbcHandles> handles, QString sql,
                           RewrittenSql rewritten)
    : m_handles(std::move(handles)),
      m_sql(std::move(sql)),
      m_rewritten(std::move(rewritten)),
      m_parameters(static_cast<size_t>(m_rewritten.parameters.size())) {}

PreparedOdbc::~PreparedOdbc() {
    // a lost connection has freed its statements
    if (m_statement != SQL_NULL_HSTMT && !m_handles->isAbandoned && !m_handles->isLost)
        odbcCall("SQLFreeHandle", SQLFreeHandle, SQLSMALLINT(SQL_HANDLE_STMT),
                 SQLHANDLE(m_statement));
}

void PreparedOdbc::check(SQLRETURN code) {
    if (!odbcSucceeded(code))
        m_handles->fail(SQL_HANDLE_STMT, m_statement, m_sql);
}

void PreparedOdbc::setAttribute(SQLINTEGER attribute, SQLULEN value) {
    // Optional: drivers without this setting return an error.
    odbcCall("SQLSetStmtAttr", SQLSetStmtAttr, m_statement, attribute,
             reinterpret_cast<SQLPOINTER>(value), SQLINTEGER(SQL_IS_UINTEGER));
}

void PreparedOdbc::prepare(SQLULEN timeLimitSeconds) {
    if (!odbcSucceeded(odbcCall("SQLAllocHandle", SQLAllocHandle, SQLSMALLINT(SQL_HANDLE_STMT),
                                SQLHANDLE(m_handles->connection), &m_statement)))
        m_handles->fail(SQL_HANDLE_DBC, m_handles->connection, m_sql);
    setAttribute(SQL_ATTR_QUERY_TIMEOUT, timeLimitSeconds);
    send(m_rewritten.text);
    describeParameters();
    if (!m_rewritten.returnsRows)
        return;
    describe();
    if (m_handles->dialect->taggedResults)
        tagResults();
}

void PreparedOdbc::send(const QString& sql) {
    QByteArray text = toDriver(sql, *m_handles->dialect);
    traceOdbc(sql);
    check(odbcCall("SQLPrepare", SQLPrepare, m_statement, reinterpret_cast<SQLCHAR*>(text.data()),
                   static_cast<SQLINTEGER>(text.size())));
}

void PreparedOdbc::describeParameters() {
    for (size_t i = 0; i < m_parameters.size(); ++i) {
        if (m_rewritten.dates[static_cast<qsizetype>(i)])
            m_parameters[i].kind = ColumnKind::Date;
        if (!m_handles->dialect->describesParameters)
            continue;
        SQLSMALLINT type = 0;
        SQLULEN size = 0;
        SQLSMALLINT scale = 0;
        SQLSMALLINT nullable = 0;
        if (odbcSucceeded(odbcCall("SQLDescribeParam", SQLDescribeParam, m_statement,
                                   static_cast<SQLUSMALLINT>(i + 1), &type, &size, &scale,
                                   &nullable)))
            m_parameters[i].kind = columnKind(type, scale);
    }
}

void PreparedOdbc::tagResults() {
    QStringList names;
    for (const SqlColumn& column : m_columns)
        names += column.name;
    try {
        send(taggedQuery(m_rewritten.text, names));
        m_kinds.assign(m_kinds.size(), ColumnKind::TaggedText);
    } catch (const DataError&) {
        send(m_rewritten.text);  // a database without the module
    }
}

SQLSMALLINT PreparedOdbc::wholeType() const {
    return m_handles->dialect->whole == Dialect::Whole::WideLong ? SQL_C_SLONG : SQL_C_SBIGINT;
}

void PreparedOdbc::describe() {
    SQLSMALLINT count = 0;
    check(odbcCall("SQLNumResultCols", SQLNumResultCols, m_statement, &count));
    for (SQLSMALLINT i = 1; i <= count; ++i) {
        std::array<SQLCHAR, 256> name{};
        SQLSMALLINT length = 0;
        SQLSMALLINT type = 0;
        SQLULEN size = 0;
        SQLSMALLINT scale = 0;
        SQLSMALLINT nullable = 0;
        check(odbcCall("SQLDescribeCol", SQLDescribeCol, m_statement, SQLUSMALLINT(i), name.data(),
                       static_cast<SQLSMALLINT>(name.size()), &length, &type, &size, &scale,
                       &nullable));
        m_columns.push_back(
            {fromDriver(reinterpret_cast<const char*>(name.data()),
                        std::min<qsizetype>(length, name.size() - 1), *m_handles->dialect)});
        m_kinds.push_back(columnKind(type, scale));
    }
}

void PreparedOdbc::bindBuffer(size_t index, SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN size,
                              SQLPOINTER buffer, SQLLEN bufferSize) {
    Parameter& parameter = m_parameters[index];
    parameter.cType = cType;
    check(odbcCall("SQLBindParameter", SQLBindParameter, m_statement,
                   static_cast<SQLUSMALLINT>(index + 1), SQLSMALLINT(SQL_PARAM_INPUT), cType,
                   sqlType, size, SQLSMALLINT(0), buffer, bufferSize, &parameter.indicator));
}

void PreparedOdbc::bindBytes(size_t index, const QByteArray& bytes, bool isBinary) {
    Parameter& parameter = m_parameters[index];
    const SQLSMALLINT cType = isBinary ? SQL_C_BINARY : SQL_C_CHAR;
    parameter.indicator = bytes.size();
    if (parameter.cType != cType || bytes.size() > parameter.capacity) {
        parameter.capacity = std::max(kDefaultTextSize, bytes.size());
        parameter.bytes = QByteArray(parameter.capacity + 1, '\0');
        const bool isLong = parameter.capacity > kLongText;
        const SQLSMALLINT sqlType = isBinary ? (isLong ? SQL_LONGVARBINARY : SQL_VARBINARY)
                                             : (isLong ? SQL_LONGVARCHAR : SQL_VARCHAR);
        bindBuffer(index, cType, sqlType, static_cast<SQLULEN>(parameter.capacity),
                   parameter.bytes.data(), parameter.capacity + 1);
    }
    std::copy(bytes.begin(), bytes.end(), parameter.bytes.data());
    parameter.bytes.data()[bytes.size()] = '\0';
}

// Parses a date, a time or both; the empty text is NULL.
void PreparedOdbc::bindAt(size_t index, const Value& value) {
    Parameter& parameter = m_parameters[index];
    const QString text = valueToPlainText(value);
    const bool isTime = parameter.kind == ColumnKind::Time;
    QString day = isTime ? QString() : text.section(QLatin1Char(' '), 0, 0);
    const QString clock = isTime ? text : text.section(QLatin1Char(' '), 1);
    if (!day.contains(QLatin1Char('-')) && day.size() == 8)
        day = day.left(4) + QLatin1Char('-') + day.mid(4, 2) + QLatin1Char('-') + day.mid(6);
    const QDate date = QDate::fromString(day, Qt::ISODate);
    const QTime time = QTime::fromString(clock, QStringLiteral("HH:mm:ss"));
    if (date.isValid() == day.isEmpty() || time.isValid() == clock.isEmpty())
        throw DataError(ErrorKind::BadValue, QString(),
                        QStringLiteral("parameter :%1 = \"%2\" is no date or time")
                            .arg(m_rewritten.parameters[static_cast<qsizetype>(index)], text));
    const SQL_DATE_STRUCT datePart{static_cast<SQLSMALLINT>(date.year()),
                                   static_cast<SQLUSMALLINT>(date.month()),
                                   static_cast<SQLUSMALLINT>(date.day())};
    const SQL_TIME_STRUCT timePart{static_cast<SQLUSMALLINT>(std::max(0, time.hour())),
                                   static_cast<SQLUSMALLINT>(std::max(0, time.minute())),
                                   static_cast<SQLUSMALLINT>(std::max(0, time.second()))};
    const auto store = [&](SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN size, const auto& part) {
        if (parameter.cType != cType)
            bindBuffer(index, cType, sqlType, size, &parameter.at, sizeof part);
        std::memcpy(&parameter.at, &part, sizeof part);
        parameter.indicator = text.isEmpty() ? SQL_NULL_DATA : SQLLEN{sizeof part};
    };
    if (isTime)
        store(SQL_C_TYPE_TIME, SQL_TYPE_TIME, 8, timePart);
    else if (parameter.kind == ColumnKind::Date)
        store(SQL_C_TYPE_DATE, SQL_TYPE_DATE, 10, datePart);
    else
        store(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 19,
              SQL_TIMESTAMP_STRUCT{datePart.year, datePart.month, datePart.day, timePart.hour,
                                   timePart.minute, timePart.second, 0});
}

void PreparedOdbc::bind(size_t index, const Value& value) {
    Parameter& parameter = m_parameters[index];
    const auto bindText = [&](const QString& text) {
        bindBytes(index, toDriver(text, *m_handles->dialect), false);
    };
    if (parameter.kind == ColumnKind::Date || parameter.kind == ColumnKind::Time ||
        parameter.kind == ColumnKind::Timestamp) {
        bindAt(index, value);
        return;
    }
    switch (value.typeId()) {
        case QMetaType::UnknownType:
            if (parameter.cType == 0)
                bindBytes(index, QByteArray(), false);
            parameter.indicator = SQL_NULL_DATA;
            break;
        case QMetaType::Double:
        case QMetaType::Float:
            if (parameter.cType != SQL_C_DOUBLE)
                bindBuffer(index, SQL_C_DOUBLE, SQL_DOUBLE, 15, &parameter.real,
                           sizeof parameter.real);
            parameter.real = value.toDouble();
            parameter.indicator = sizeof parameter.real;
            break;
        case QMetaType::Bool:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::LongLong:
            if (parameter.cType != wholeType())
                bindBuffer(index, wholeType(), SQL_BIGINT, 19, &parameter.whole,
                           sizeof parameter.whole);
            parameter.whole = value.toLongLong();
            parameter.indicator = sizeof parameter.whole;
            break;
        case QMetaType::QDate:
            bindText(value.toDate().toString(QStringLiteral("yyyy-MM-dd")));
            break;
        case QMetaType::QTime:
            bindText(value.toTime().toString(QStringLiteral("HH:mm:ss")));
            break;
        case QMetaType::QDateTime:
            bindText(value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
            break;
        case QMetaType::QByteArray:
            bindBytes(index, value.toByteArray(), true);
            break;
        default:
            bindText(value.toString());
    }
}

qint64 PreparedOdbc::execute(const std::vector<Value>& values) {
    for (size_t i = 0; i < m_parameters.size(); ++i)
        bind(i, values[i]);
    const SQLRETURN code = odbcCall("SQLExecute", SQLExecute, m_statement);
    if (code != SQL_NO_DATA)  // returned by an UPDATE that matches no rows
        check(code);
    if (!m_columns.empty()) {
        m_isResultOpen = true;
        return 0;
    }
    SQLLEN rows = 0;
    if (code != SQL_NO_DATA)
        check(odbcCall("SQLRowCount", SQLRowCount, m_statement, &rows));
    return std::max<qint64>(0, rows);
}

void PreparedOdbc::closeResult() {
    m_isResultOpen = false;
    odbcCall("SQLFreeStmt", SQLFreeStmt, m_statement, SQLUSMALLINT(SQL_CLOSE));
}

void PreparedOdbc::fetch() {
    m_cells.clear();
    for (int row = 0; row < kBatchRows; ++row) {
        const SQLRETURN code = odbcCall("SQLFetch", SQLFetch, m_statement);
        if (code == SQL_NO_DATA) {
            closeResult();
            return;
        }
        check(code);
        for (size_t i = 0; i < m_kinds.size(); ++i)
            m_cells.push_back(cell(static_cast<SQLUSMALLINT>(i + 1), m_kinds[i]));
    }
}

// @return false for NULL.
template <typename Buffer>
bool PreparedOdbc::get(SQLUSMALLINT column, SQLSMALLINT cType, Buffer& buffer) {
    SQLLEN indicator = 0;
    check(odbcCall("SQLGetData", SQLGetData, m_statement, column, cType, SQLPOINTER(&buffer),
                   static_cast<SQLLEN>(sizeof buffer), &indicator));
    return indicator != SQL_NULL_DATA;
}

Value PreparedOdbc::cell(SQLUSMALLINT column, ColumnKind kind) {
    switch (kind) {
        case ColumnKind::Whole: {
            SQLBIGINT whole = 0;
            return get(column, wholeType(), whole) ? Value(static_cast<qint64>(whole)) : Value();
        }
        case ColumnKind::Whole16: {
            SQLSMALLINT whole = 0;
            return get(column, SQL_C_SSHORT, whole) ? Value(qint64{whole}) : Value();
        }
        case ColumnKind::Single: {
            SQLREAL real = 0;
            return get(column, SQL_C_FLOAT, real) ? Value(static_cast<double>(real)) : Value();
        }
        case ColumnKind::Real: {
            SQLDOUBLE real = 0;
            return get(column, SQL_C_DOUBLE, real) ? Value(real) : Value();
        }
        case ColumnKind::Date: {
            SQL_DATE_STRUCT date{};
            if (!get(column, SQL_C_TYPE_DATE, date) || date.month == 0)
                return emptyText();
            return QString::asprintf("%04d-%02d-%02d", date.year, date.month, date.day);
        }
        case ColumnKind::Time: {
            SQL_TIME_STRUCT time{};
            if (!get(column, SQL_C_TYPE_TIME, time))
                return emptyText();
            return QString::asprintf("%02d:%02d:%02d", time.hour, time.minute, time.second);
        }
        case ColumnKind::Timestamp: {
            SQL_TIMESTAMP_STRUCT at{};
            if (!get(column, SQL_C_TYPE_TIMESTAMP, at) || at.month == 0)
                return emptyText();
            return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", at.year, at.month, at.day,
                                     at.hour, at.minute, at.second);
        }
        default:
            return textCell(column, kind);
    }
}

Value PreparedOdbc::textCell(SQLUSMALLINT column, ColumnKind kind) {
    const bool isBinary = kind == ColumnKind::Bytes;
    const SQLSMALLINT cType = isBinary ? SQL_C_BINARY : SQL_C_CHAR;
    std::array<char, 2048> part{};
    const auto room = static_cast<SQLLEN>(part.size()) - (isBinary ? 0 : 1);
    QByteArray bytes;
    for (;;) {
        SQLLEN left = 0;
        const SQLRETURN code =
            odbcCall("SQLGetData", SQLGetData, m_statement, column, cType, SQLPOINTER(part.data()),
                     static_cast<SQLLEN>(part.size()), &left);
        if (code == SQL_NO_DATA)
            break;
        check(code);
        if (left == SQL_NULL_DATA)
            return {};
        const bool isCut = code == SQL_SUCCESS_WITH_INFO && (left == SQL_NO_TOTAL || left > room);
        bytes.append(part.data(), isCut ? room : std::min(left, room));
        if (!isCut)
            break;
    }
    if (isBinary)
        return bytes;
    if (kind == ColumnKind::PaddedText) {
        while (bytes.endsWith(' '))
            bytes.chop(1);
    }
    const QString text =
        emptyText() + fromDriver(bytes.constData(), bytes.size(), *m_handles->dialect);
    return kind == ColumnKind::TaggedText ? untagged(text) : Value(text);
}

}  // namespace engines::shops
