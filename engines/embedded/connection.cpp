#include "engines/embedded/connection.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "data/lock/link_count.h"
#include "engines/embedded/functions.h"
#include "engines/embedded/record_visit.h"
#include "engines/embedded/schema.h"
#include "engines/embedded/sql_text.h"
#include "engines/embedded/stored_table.h"
#include "engines/embedded/virtual_table.h"

namespace engines::embedded {

namespace {

// Wait for SQLite's write lock: must outlast another program's largest statement.
constexpr int kBusyTimeoutMs = 10000;
constexpr size_t kMaxCachedStatements = 32;
constexpr std::chrono::milliseconds kFlushAfter{100};

qint64 pragma(sqlite3* db, const QByteArray& name, const QString& fileName) {
    Statement statement(db, "PRAGMA " + name, fileName);
    statement.step();
    return statement.integer(0);
}

// Programs that reach one file by different names have different lock files and write-ahead logs.
void requireOneName(const QString& fileName) {
    const std::uint64_t names = linkCount(fileName);
    if (names <= 1)
        return;
    throw DataError(ErrorKind::Engine, fileName,
                    QStringLiteral("the file has %1 names (hard links), and programs that use "
                                   "different ones would damage it; remove the other names, or "
                                   "replace them by symbolic links")
                        .arg(names))
        .inFinnish(
            QStringLiteral("tiedostolla on %1 nimeä (kovia linkkejä), ja eri nimiä käyttävät "
                           "ohjelmat vioittaisivat sen")
                .arg(names),
            QStringLiteral("Poista muut nimet tai korvaa ne symbolisilla linkeillä."));
}

// A backup may have been restored between opening the file and its first lock.
void requireSameFile(sqlite3* db, const QString& fileName) {
    int moved = 0;
    sqlite3_file_control(db, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    if (moved != 0)
        throw DataError(ErrorKind::Locked, fileName,
                        QStringLiteral("the database is being replaced; try again"))
            .inFinnish(QStringLiteral("tietokanta vaihdettiin juuri toiseen"),
                       QStringLiteral("Yritä uudestaan."));
}

bool isInternalName(const char* name) {
    return name != nullptr &&
           (sqlite3_strnicmp(name, "rec_", 4) == 0 || sqlite3_strnicmp(name, "sqlite_", 7) == 0 ||
            sqlite3_strnicmp(name, "zdb_", 4) == 0);
}

}  // namespace

void requireCompanyFile(sqlite3* db, const QString& fileName) {
    requireOneName(fileName);
    if (pragma(db, "application_id", fileName) != kApplicationId)
        throw DataError(ErrorKind::Damaged, fileName,
                        QStringLiteral("not a company database of this program"))
            .inFinnish(QStringLiteral("tiedosto ei ole tämän ohjelman yritystietokanta"));
    const qint64 version = pragma(db, "user_version", fileName);
    if (version > kFormatVersion)
        throw DataError(ErrorKind::Engine, fileName,
                        QStringLiteral("format version %1 is newer than this program's %2")
                            .arg(version)
                            .arg(kFormatVersion))
            .inFinnish(
                QStringLiteral("tietokannan muoto %1 on uudempi kuin tämän ohjelman muoto %2")
                    .arg(version)
                    .arg(kFormatVersion),
                QStringLiteral("Ota käyttöön ohjelman uudempi versio."));
    if (version < 1)
        throw DataError(ErrorKind::Damaged, fileName,
                        QStringLiteral("unknown format version %1").arg(version))
            .inFinnish(QStringLiteral("tietokannan muoto %1 on tuntematon").arg(version));
}

Connection::InternalUse::InternalUse(Connection& connection)
    : m_connection(connection), m_previous(std::exchange(connection.m_checksNames, false)) {}

Connection::InternalUse::~InternalUse() {
    m_connection.m_checksNames = m_previous;
}

Connection::Connection(const QString& fileName, Schema schema) : m_fileName(fileName) {
    if (!QFileInfo::exists(fileName))
        throw DataError(ErrorKind::NoConnection, fileName, QStringLiteral("no such file"))
            .inFinnish(QStringLiteral("tiedostoa ei ole"));
    requireOneName(fileName);  // before anything is opened
    m_handle = SqliteHandle(fileName, SqliteHandle::Mode::ReadWrite);
    m_db = m_handle.get();
    checkFile();
    if (schema == Schema::Own)
        requireOwnSchema(m_db, m_fileName);
    m_locks = std::make_unique<RecordLocks>(lockFileName(fileName));
    m_journal = std::make_unique<journal::JournalStore>(
        m_db, m_fileName, "PRAGMA user_version = " + QByteArray::number(kFormatVersion),
        [this] { return m_locks->runGoesOn(); });
    configure();
    requireSameFile(m_db, fileName);
}

Connection::Connection(sqlite3* host)
    : m_fileName(QString::fromUtf8(sqlite3_db_filename(host, "main"))), m_db(host) {
    requireOneName(m_fileName);
    checkFile();
    requireOwnSchema(m_db, m_fileName);
    m_locks = std::make_unique<RecordLocks>(lockFileName(m_fileName));
    m_journal = std::make_unique<journal::JournalStore>(m_db, m_fileName, QByteArray(),
                                                        [] { return false; });
    registerFunctions(m_db);
    registerRecordVisit(m_db);
    registerVirtualTables(*this);
}

Connection::~Connection() {
    for (const CachedStatement& cached : m_cache)
        sqlite3_finalize(cached.statement);
    m_tables.clear();
}

// Next to the database file itself, so that programs using different symbolic links share one lock
// file.
QString Connection::lockFileName(const QString& fileName) {
    const QString real = QFileInfo(fileName).canonicalFilePath();
    return (real.isEmpty() ? fileName : real) + QStringLiteral("-lock");
}

void Connection::checkFile() {
    sqlite3_busy_timeout(m_db, kBusyTimeoutMs);
    requireCompanyFile(m_db, m_fileName);
    if (sqlite3_db_readonly(m_db, "main") == 1)
        throw DataError(ErrorKind::ReadOnly, m_fileName, QStringLiteral("the file is read-only"))
            .inFinnish(QStringLiteral("tiedosto on vain luettavissa"));
}

void Connection::configure() {
    sqlite3* db = m_db;
    // 32 MB of page cache. The file is not mapped into memory: reading a mapped file that was
    // truncated or lost ends the process with a signal instead of an error.
    execute(db,
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
            "PRAGMA wal_autocheckpoint = 4000; PRAGMA journal_size_limit = 67108864;"
            "PRAGMA cache_size = -32000; PRAGMA mmap_size = 0;"
            "PRAGMA secure_delete = OFF;",
            m_fileName);
    // The schema has been checked, but another program may change it at any time: no triggers, no
    // views, and no functions or virtual tables for what else it may contain.
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    // VACUUM bypasses the authorizer and uses an attached file.
    sqlite3_limit(db, SQLITE_LIMIT_ATTACHED, 0);
    registerFunctions(db);
    registerRecordVisit(db);
    registerVirtualTables(*this);
    sqlite3_set_authorizer(db, authorize, this);
}

// User SQL may only read and write tables. Stored bytes, schema, settings and transactions are
// internal.
int Connection::authorize(void* self, int action, const char* first, const char* second,
                          const char* /*database*/, const char* /*trigger*/) {
    auto* connection = static_cast<Connection*>(self);
    if (!connection->m_checksNames)
        return SQLITE_OK;
    connection->m_authorizerCalled = true;
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_RECURSIVE:
            return SQLITE_OK;
        case SQLITE_READ:
        case SQLITE_INSERT:
        case SQLITE_UPDATE:
        case SQLITE_DELETE:
            return isInternalName(first) ? SQLITE_DENY : SQLITE_OK;
        case SQLITE_FUNCTION:
            return sqlite3_stricmp(second, "load_extension") == 0 ? SQLITE_DENY : SQLITE_OK;
        default:
            return SQLITE_DENY;
    }
}

const Catalogue& Connection::catalogue() {
    if (!m_catalogue) {
        const InternalUse internal(*this);
        m_catalogue = std::make_unique<Catalogue>(readCatalogue(db()));
    }
    return *m_catalogue;
}

void Connection::forgetCatalogue() {
    m_tables.clear();
    m_catalogue.reset();
}

StoredTable& Connection::table(const QString& name) {
    const QString folded = foldedName(name);
    if (const auto known = m_tables.constFind(folded); known != m_tables.constEnd())
        return **known;
    const auto opened = std::make_shared<StoredTable>(*this, catalogue().describe(name));
    m_tables.insert(folded, opened);
    return *opened;
}

sqlite3_stmt* Connection::prepare(const QString& sql) {
    const auto cached = std::find_if(m_cache.begin(), m_cache.end(),
                                     [&sql](const CachedStatement& c) { return c.sql == sql; });
    if (cached != m_cache.end()) {
        sqlite3_stmt* statement = cached->statement;
        m_cache.erase(cached);
        return statement;
    }
    const QByteArray text = engineText(sql).toUtf8();
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    clearFailure();
    m_checksNames = true;
    m_authorizerCalled = false;
    const int code = sqlite3_prepare_v3(db(), text.constData(), static_cast<int>(text.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, &tail);
    m_checksNames = false;
    if (code != SQLITE_OK) {
        throwFailure();
        throwSqlite(db(), code, QString());
    }
    if (statement == nullptr)
        throw DataError(ErrorKind::Syntax, QString(), QStringLiteral("the statement is empty"));
    // VACUUM bypasses the authorizer; RETURNING rows would go unread.
    if (!m_authorizerCalled ||
        (sqlite3_stmt_readonly(statement) == 0 && sqlite3_column_count(statement) > 0)) {
        sqlite3_finalize(statement);
        throw DataError(ErrorKind::Syntax, QString(),
                        QStringLiteral("only SELECT, INSERT, UPDATE and DELETE without RETURNING "
                                       "are run: \"%1\"")
                            .arg(sql.trimmed()));
    }
    sqlite3_stmt* second = nullptr;
    const int rest = sqlite3_prepare_v2(db(), tail, -1, &second, nullptr);
    sqlite3_finalize(second);
    if (rest != SQLITE_OK || second != nullptr) {
        sqlite3_finalize(statement);
        throw DataError(ErrorKind::Syntax, QString(),
                        QStringLiteral("more than one statement: \"%1\"")
                            .arg(QString::fromUtf8(tail).trimmed()));
    }
    return statement;
}

void Connection::returnStatement(const QString& sql, sqlite3_stmt* statement) {
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    m_cache.push_back({sql, statement});
    if (m_cache.size() > kMaxCachedStatements) {
        sqlite3_finalize(m_cache.front().statement);
        m_cache.erase(m_cache.begin());
    }
}

void Connection::runTransaction(const std::function<void()>& body) {
    if (m_begin.get() == nullptr) {
        m_begin = Statement(db(), "BEGIN IMMEDIATE", m_fileName);
        m_commit = Statement(db(), "COMMIT", m_fileName);
    }
    m_begin.run();
    try {
        body();
        // The body may have caught an error that rolled the transaction back.
        if (sqlite3_get_autocommit(db()) != 0)
            throw DataError(ErrorKind::Io, m_fileName,
                            QStringLiteral("the database undid the transaction"))
                .inFinnish(QStringLiteral("tietokanta perui muutoksen"));
        m_commit.run();
    } catch (...) {
        if (sqlite3_get_autocommit(db()) == 0)
            sqlite3_exec(db(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

void Connection::write(WriteUnit unit, const std::function<void()>& body) {
    if (m_inTransaction) {
        // Fails immediately on a lock: waiting here would hold SQLite's write lock.
        try {
            body();
        } catch (const RecordIsHeld& held) {
            throwLocked(held);
        }
        return;
    }
    const auto end = std::chrono::steady_clock::now() + lockWait;
    for (;;) {
        try {
            if (unit == WriteUnit::Records)
                runTransaction(body);
            else
                body();
            stored();
            return;
        } catch (const RecordIsHeld& held) {
            undoStatement();
            flushBeforeWait();
            if (!m_locks->waitForConflict(end))
                throwLocked(held);
        } catch (...) {
            undoStatement();
            throw;
        }
    }
}

void Connection::undoStatement() {
    m_locks->endStatement();
    m_journal->undone();
}

void Connection::inTransaction(const std::function<void()>& body) {
    if (m_inTransaction) {
        body();
        return;
    }
    m_inTransaction = true;
    try {
        runTransaction(body);
    } catch (...) {
        m_inTransaction = false;
        undoStatement();
        throw;
    }
    m_inTransaction = false;
    stored();
}

void Connection::stored() {
    m_locks->endStatement();
    m_journal->stored();
    if (!m_defersFlushes)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (!m_unflushedSince)
        m_unflushedSince = now;
    else if (now - *m_unflushedSince >= kFlushAfter)
        flush();
}

void Connection::deferFlushes(bool on) {
    if (on == m_defersFlushes)
        return;
    flush();
    execute(db(), on ? "PRAGMA synchronous = NORMAL" : "PRAGMA synchronous = FULL", m_fileName);
    m_defersFlushes = on;
}

// In NORMAL mode SQLite itself flushes the log only before it moves it into the database.
void Connection::flush() {
    if (!m_defersFlushes)
        return;
    sqlite3_file* log = nullptr;
    int code = sqlite3_file_control(db(), "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    if (code == SQLITE_OK && log != nullptr && log->pMethods != nullptr)
        code = log->pMethods->xSync(log, SQLITE_SYNC_NORMAL);
    if (code != SQLITE_OK)
        throwSqlite(nullptr, code, m_fileName);
    m_unflushedSince.reset();
}

void Connection::flushBeforeWait() {
    if (m_unflushedSince)
        flush();
}

void Connection::throwHeld(const StoredTable& table, const QByteArray& record) const {
    throw RecordIsHeld{table.name(), table.describe(record)};
}

void Connection::throwLocked(const RecordIsHeld& held) const {
    throw DataError(ErrorKind::Locked, held.table,
                    QStringLiteral("another program holds the record %1").arg(held.record))
        .inFinnish(QStringLiteral("tietue ") + held.record);
}

void Connection::countSqlTables(int more) {
    if (isHosted() && (m_sqlTables += more) == 0)
        forgetCatalogue();
}

void Connection::countCursors(int more) {
    if (isHosted() && (m_cursors += more) == 0)
        m_transientIndexes.clear();
}

void Connection::throwFailure() {
    if (m_failure)
        std::rethrow_exception(std::exchange(m_failure, nullptr));
}

}  // namespace engines::embedded
