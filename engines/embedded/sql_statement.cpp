#include "engines/embedded/sql_statement.h"

#include <QDateTime>

namespace engines::embedded {

namespace {

// The name after the colon; empty for a parameter without a name.
QString parameterName(sqlite3_stmt* statement, int index) {
    const char* name = sqlite3_bind_parameter_name(statement, index);
    return name != nullptr ? QString::fromUtf8(name + 1) : QString();
}

int bindText(sqlite3_stmt* statement, int index, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return sqlite3_bind_text64(statement, index, utf8.constData(),
                               static_cast<sqlite3_uint64>(utf8.size()), SQLITE_TRANSIENT,
                               SQLITE_UTF8);
}

int bindValue(sqlite3_stmt* statement, int index, const Value& value) {
    switch (value.typeId()) {
        case QMetaType::UnknownType:
            return sqlite3_bind_null(statement, index);
        case QMetaType::Double:
        case QMetaType::Float:
            return sqlite3_bind_double(statement, index, value.toDouble());
        case QMetaType::Bool:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::LongLong:
            return sqlite3_bind_int64(statement, index, value.toLongLong());
        case QMetaType::QDate:  // an invalid date becomes the empty text
            return bindText(statement, index,
                            value.toDate().toString(QStringLiteral("yyyy-MM-dd")));
        case QMetaType::QTime:
            return bindText(statement, index, value.toTime().toString(QStringLiteral("HH:mm:ss")));
        case QMetaType::QDateTime:
            return bindText(statement, index,
                            value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        case QMetaType::QByteArray: {
            const QByteArray bytes = value.toByteArray();
            return sqlite3_bind_blob64(statement, index, bytes.constData(),
                                       static_cast<sqlite3_uint64>(bytes.size()), SQLITE_TRANSIENT);
        }
        default:
            return bindText(statement, index, value.toString());
    }
}

}  // namespace

EmbeddedSqlStatement::EmbeddedSqlStatement(std::shared_ptr<Connection> connection,
                                           const QString& sql)
    : m_connection(std::move(connection)), m_sql(sql), m_statement(m_connection->prepare(sql)) {
    for (int i = 0; i < sqlite3_column_count(m_statement); ++i)
        m_columns.push_back({QString::fromUtf8(sqlite3_column_name(m_statement, i))});
    for (int i = 1; i <= sqlite3_bind_parameter_count(m_statement); ++i)
        m_parameters.append(parameterName(m_statement, i));
    m_distinct = EmbeddedSqlStatement::parameterNames().size() == m_parameters.size();
}

EmbeddedSqlStatement::~EmbeddedSqlStatement() {
    m_connection->transientIndexes().clear();
    m_connection->returnStatement(m_sql, m_statement);
}

QStringList EmbeddedSqlStatement::parameterNames() const {
    QStringList names;
    for (const QString& name : m_parameters) {
        if (!names.contains(name, Qt::CaseInsensitive))
            names.append(name);
    }
    return names;
}

void EmbeddedSqlStatement::bindIndex(qsizetype index, const Value& value) {
    const int code = bindValue(m_statement, static_cast<int>(index) + 1, value);
    if (code != SQLITE_OK)
        throwSqlite(m_connection->db(), code, QString());
}

void EmbeddedSqlStatement::bind(const QString& name, const Value& value) {
    // Callers bind in the order of the text, row after row: try the expected index first.
    if (m_distinct && m_nextBind < m_parameters.size() && m_parameters[m_nextBind] == name) {
        bindIndex(m_nextBind++, value);
        return;
    }
    bool found = false;
    for (qsizetype i = 0; i < m_parameters.size(); ++i) {
        if (m_parameters[i].compare(name, Qt::CaseInsensitive) != 0)
            continue;
        found = true;
        bindIndex(i, value);
        m_nextBind = i + 1;
    }
    if (!found)
        throw DataError(ErrorKind::NoSuchField, QString(),
                        QStringLiteral("the statement has no parameter \":%1\"").arg(name));
}

bool EmbeddedSqlStatement::stepOnce() {
    m_connection->clearFailure();
    if (sqlite3_stmt_busy(m_statement) == 0)
        m_connection->transientIndexes().clear();
    const int code = sqlite3_step(m_statement);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    // An exception kept by a callback says more than SQLite's code.
    try {
        m_connection->throwFailure();
        throwSqlite(m_connection->db(), code, QString());
    } catch (...) {
        sqlite3_reset(m_statement);
        throw;
    }
}

bool EmbeddedSqlStatement::step() {
    if (m_atEnd)
        return false;
    if (sqlite3_stmt_readonly(m_statement) == 0) {
        execute();
        m_atEnd = true;
        return false;
    }
    if (sqlite3_stmt_busy(m_statement) == 0)
        m_connection->flushBeforeWait();  // the query may take long
    m_atEnd = !stepOnce();
    return !m_atEnd;
}

Value EmbeddedSqlStatement::value(int column) const {
    switch (sqlite3_column_type(m_statement, column)) {
        case SQLITE_INTEGER:
            return static_cast<qint64>(sqlite3_column_int64(m_statement, column));
        case SQLITE_FLOAT:
            return sqlite3_column_double(m_statement, column);
        case SQLITE_TEXT: {
            const auto* text =
                reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
            return QString::fromUtf8(text, sqlite3_column_bytes(m_statement, column));
        }
        case SQLITE_BLOB: {
            const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_statement, column));
            return QByteArray(bytes, sqlite3_column_bytes(m_statement, column));
        }
        default:
            return {};
    }
}

qint64 EmbeddedSqlStatement::execute() {
    qint64 changed = 0;
    const auto run = [&] {
        while (stepOnce()) {
        }
        changed = sqlite3_changes64(m_connection->db());
        sqlite3_reset(m_statement);
    };
    if (sqlite3_stmt_readonly(m_statement) != 0) {
        run();
        return 0;
    }
    m_connection->write(Connection::WriteUnit::Statement, run);
    return changed;
}

void EmbeddedSqlStatement::reset() {
    m_connection->transientIndexes().clear();
    sqlite3_reset(m_statement);
    m_atEnd = false;
    m_nextBind = 0;
}

}  // namespace engines::embedded
