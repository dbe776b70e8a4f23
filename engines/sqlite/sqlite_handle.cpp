#include "engines/sqlite/sqlite_handle.h"

#include <QFile>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include "data/system_path.h"
#include "engines/sqlite/joined_log_writes.h"

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <unistd.h>
#endif

namespace engines::sqlite {

namespace {

const char*& fileSystemName() {
#ifdef Q_OS_WIN
    static const char* name = "win32-longpath";  // the default file system stops at 260 characters
#else
    static const char* name = nullptr;
#endif
    return name;
}

/// Creates the file before SQLite does, because SQLite would let only the owner write, whatever the
/// umask. SQLite gives its own files the database's mode.
void makeFile([[maybe_unused]] const QString& fileName) {
#ifndef Q_OS_WIN
    // O_EXCL: closing a descriptor of an existing file would drop this process's locks on it.
    // SQLite's open reports errors.
    const int file = ::open(QFile::encodeName(fileName).constData(),
                            O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0664);
    if (file >= 0)
        ::close(file);
#endif
}

bool startsWith(const char* text, const char* prefix) {
    return text != nullptr && std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

/// SQLite's messages about statements in Finnish; empty for rare ones.
QString statementText(const QString& message) {
    struct Text {
        QLatin1String beginning;
        QString finnish;  ///< "%1": what follows the beginning
    };
    static const Text kTexts[] = {
        {QLatin1String("no such table: "), QStringLiteral("taulua %1 ei ole")},
        {QLatin1String("no such column: "), QStringLiteral("saraketta %1 ei ole")},
        {QLatin1String("no such function: "), QStringLiteral("funktiota %1 ei ole")},
        {QLatin1String("ambiguous column name: "), QStringLiteral("sarake %1 on useassa taulussa")},
        {QLatin1String("unrecognized token: "), QStringLiteral("tuntematon merkintä %1")},
        {QLatin1String("incomplete input"), QStringLiteral("lause on kesken")},
        {QLatin1String("UNIQUE constraint failed: "), QStringLiteral("sama arvo on jo: %1")},
        {QLatin1String("NOT NULL constraint failed: "), QStringLiteral("arvo puuttuu: %1")},
        {QLatin1String("string or blob too big"), QStringLiteral("arvo on liian pitkä")},
        {QLatin1String("interrupted"), QStringLiteral("toiminto keskeytettiin")},
    };
    for (const Text& text : kTexts)
        if (message.startsWith(text.beginning))
            return text.finnish.contains(QLatin1String("%1"))
                       ? text.finnish.arg(message.mid(text.beginning.size()))
                       : text.finnish;
    static const QString kNear = QStringLiteral("near ");
    static const QString kSyntax = QStringLiteral(": syntax error");
    if (message.startsWith(kNear) && message.endsWith(kSyntax))
        return QStringLiteral("virhe kohdassa ") +
               message.sliced(kNear.size()).chopped(kSyntax.size());
    return {};
}

/// Adds Finnish texts; SQLite's own messages are English.
DataError inFinnish(const DataError& error, int code) {
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return error.inFinnish(QStringLiteral("tietokanta on varattu"));
        case SQLITE_READONLY:
            return error.inFinnish(QStringLiteral("tietokanta on vain luettavissa"));
        case SQLITE_FULL:
            return error.inFinnish(QStringLiteral("tietokannalle ei ole tilaa"));
        case SQLITE_IOERR:
            return error.inFinnish(QStringLiteral("levyn luku tai kirjoitus ei onnistu"));
        case SQLITE_CORRUPT:
            return error.inFinnish(QStringLiteral("tietokantatiedosto on vioittunut"));
        case SQLITE_NOTADB:
            return error.inFinnish(QStringLiteral("tiedosto ei ole tietokanta"));
        case SQLITE_CANTOPEN:
            return error.inFinnish(QStringLiteral("tiedostoa ei voi avata"));
        default:
            return error.inFinnish(statementText(error.detail()));
    }
}

/// The file as a SQLite URI that opens also the index of the write-ahead log read-only. If no other
/// program has the file open, SQLite then reads the log into an index in memory.
QByteArray untouchedUri(const QString& fileName) {
    return "file:" + fileName.toUtf8().toPercentEncoding("/") + "?mode=ro&readonly_shm=1";
}

/// The system's code of the last failure of reading or writing; 0: not known. After undoing what
/// failed only the file may still know it.
int systemError(sqlite3* db) {
    int cause = sqlite3_system_errno(db);
    if (cause == 0 &&
        sqlite3_file_control(db, "main", SQLITE_FCNTL_LAST_ERRNO, &cause) != SQLITE_OK)
        return 0;
    return cause;
}

}  // namespace

ErrorKind errorKind(int code, const char* message) {
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ErrorKind::Locked;
        case SQLITE_READONLY:
            return ErrorKind::ReadOnly;
        case SQLITE_FULL:
            return ErrorKind::DiskFull;
        case SQLITE_IOERR:
            return ErrorKind::Io;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return ErrorKind::Damaged;
        case SQLITE_CANTOPEN:
            return ErrorKind::NoConnection;
        case SQLITE_CONSTRAINT:
            return code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY
                       ? ErrorKind::DuplicateKey
                       : ErrorKind::Engine;
        case SQLITE_ERROR:
            if (startsWith(message, "no such table"))
                return ErrorKind::NoSuchTable;
            if (startsWith(message, "no such column") || startsWith(message, "table "))
                return ErrorKind::NoSuchField;  // "table T has no column named C"
            return ErrorKind::Syntax;
        default:
            return ErrorKind::Engine;
    }
}

void throwSqlite(sqlite3* db, int code, const QString& table) {
    if ((code & 0xFF) == SQLITE_NOMEM)
        throw std::bad_alloc();
    const char* message = db != nullptr ? sqlite3_errmsg(db) : sqlite3_errstr(code);
    const int extended = db != nullptr && (sqlite3_extended_errcode(db) & 0xFF) == (code & 0xFF)
                             ? sqlite3_extended_errcode(db)
                             : code;
    const bool failedFile = db != nullptr && (extended & 0xFF) == SQLITE_IOERR;
    const std::error_code cause(failedFile ? systemError(db) : 0, std::system_category());
    QString detail = QString::fromUtf8(message);
    if (cause)
        detail += QStringLiteral(": ") + QString::fromStdString(cause.message());
    const DataError error(errorKind(extended, message), table, detail, extended);
    if (cause == std::errc::file_too_large)
        throw error.inFinnish(
            QStringLiteral("tiedosto ei saa kasvaa järjestelmän sallimaa kokoa suuremmaksi"),
            QStringLiteral("Suurenna tiedostokoon rajaa ja yritä uudelleen."));
    throw inFinnish(error, extended);
}

SqliteHandle::SqliteHandle(const QString& fileName, Mode mode) {
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (mode == Mode::Create)
        flags |= SQLITE_OPEN_CREATE;
    else if (mode == Mode::Untouched)
        flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    if (mode == Mode::Create && fileName != QLatin1String(":memory:"))
        makeFile(fileName);
    const QString path = systemPath(fileName);
    const QByteArray name = mode == Mode::Untouched ? untouchedUri(path) : path.toUtf8();
    const int code =
        sqlite3_open_v2(name.constData(), &m_db, flags, withJoinedLogWrites(fileSystemName()));
    if (code != SQLITE_OK) {
        const QString detail =
            QString::fromUtf8(m_db != nullptr ? sqlite3_errmsg(m_db) : sqlite3_errstr(code));
        const ErrorKind kind = errorKind(code, nullptr);
        sqlite3_close(std::exchange(m_db, nullptr));
        throw inFinnish(DataError(kind, fileName, detail, code), code);
    }
    sqlite3_extended_result_codes(m_db, 1);
    if (mode == Mode::Untouched)
        sqlite3_db_config(m_db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

SqliteHandle::~SqliteHandle() {
    sqlite3_close(m_db);
}

SqliteHandle::SqliteHandle(SqliteHandle&& other) noexcept
    : m_db(std::exchange(other.m_db, nullptr)) {}

SqliteHandle& SqliteHandle::operator=(SqliteHandle&& other) noexcept {
    std::swap(m_db, other.m_db);
    return *this;
}

void SqliteHandle::setFileSystem(const char* name) {
    fileSystemName() = name;
}

Statement::Statement(sqlite3* db, const QByteArray& text, QString table)
    : m_table(std::move(table)) {
    const int code = sqlite3_prepare_v3(db, text.constData(), static_cast<int>(text.size()),
                                        SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr);
    if (code != SQLITE_OK)
        throwSqlite(db, code, m_table);
}

Statement::~Statement() {
    sqlite3_finalize(m_statement);
}

Statement::Statement(Statement&& other) noexcept
    : m_statement(std::exchange(other.m_statement, nullptr)), m_table(std::move(other.m_table)) {}

Statement& Statement::operator=(Statement&& other) noexcept {
    std::swap(m_statement, other.m_statement);
    std::swap(m_table, other.m_table);
    return *this;
}

void Statement::check(int code) {
    if (code != SQLITE_OK)
        throwSqlite(sqlite3_db_handle(m_statement), code, m_table);
}

void Statement::bind(int index, qint64 value) {
    check(sqlite3_bind_int64(m_statement, index, value));
}

void Statement::bind(int index, QByteArrayView blob) {
    // sqlite3_bind_blob() with a null pointer would bind NULL.
    const char* data = blob.isEmpty() ? "" : blob.data();
    check(sqlite3_bind_blob64(m_statement, index, data, static_cast<sqlite3_uint64>(blob.size()),
                              SQLITE_STATIC));
}

void Statement::bindText(int index, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    check(sqlite3_bind_text64(m_statement, index, utf8.constData(),
                              static_cast<sqlite3_uint64>(utf8.size()), SQLITE_TRANSIENT,
                              SQLITE_UTF8));
}

bool Statement::step() {
    const int code = sqlite3_step(m_statement);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    // Read the connection's message before the reset.
    try {
        throwSqlite(sqlite3_db_handle(m_statement), code, m_table);
    } catch (...) {
        sqlite3_reset(m_statement);
        throw;
    }
}

void Statement::run() {
    while (step()) {
    }
    reset();
}

void Statement::reset() {
    sqlite3_reset(m_statement);
}

QByteArrayView Statement::blob(int column) const {
    const void* data = sqlite3_column_blob(m_statement, column);
    return {static_cast<const char*>(data), sqlite3_column_bytes(m_statement, column)};
}

QString Statement::text(int column) const {
    return QString::fromUtf8(
        reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column)),
        sqlite3_column_bytes(m_statement, column));
}

void execute(sqlite3* db, const QByteArray& sql, const QString& table) {
    const int code = sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        throwSqlite(db, code, table);
}

QByteArray quotedName(const QString& name) {
    QByteArray quoted = name.toUtf8();
    quoted.replace('"', "\"\"");
    return '"' + quoted + '"';
}

}  // namespace engines::sqlite
