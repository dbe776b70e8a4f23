#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "engines/data_names.h"
#include "engines/embedded/catalogue.h"
#include "engines/embedded/record_locks.h"
#include "engines/embedded/sqlite_names.h"
#include "engines/embedded/transient_index.h"
#include "engines/journal/journal_store.h"

namespace engines::embedded {

class StoredTable;

/// Application id ("ZDB1") of the engine's files, and their format versions: a new file's, and that
/// of one with a run journal, which programs that know of no unfinished run must not open.
inline constexpr int kApplicationId = 0x5A444231;
inline constexpr int kNewFormatVersion = 1;
inline constexpr int kFormatVersion = 2;

/// Refuses a file that is no company database or has a newer format, or that has several hard
/// links. @throws DataError(Damaged, Engine) naming the file.
void requireCompanyFile(sqlite3* db, const QString& fileName);

/// One connection to a company's database, with what its users share: the catalogue, open tables,
/// record locks and the cache of SQL statements. SQL uses it through the virtual table module.
class Connection {
  public:
    enum class Schema {
        Own,  ///< a file with foreign schema objects is refused
        Any   ///< for reporting what is wrong with a file
    };
    /// Opens the database file and registers functions, collations and the virtual table module.
    /// @throws DataError: NoConnection, ReadOnly, Damaged (not a company database, or one with
    /// foreign schema objects), Engine (newer format; a file with several hard links).
    explicit Connection(const QString& fileName, Schema schema = Schema::Own);
    /// Registers the same on a connection that a host program has opened. Statements there run
    /// outside of write(), so a record locked by another program fails them immediately.
    /// @throws DataError as above.
    explicit Connection(sqlite3* host);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Path of the lock file of a database file.
    static QString lockFileName(const QString& fileName);

    sqlite3* db() const { return m_db; }
    bool isHosted() const { return m_handle.get() == nullptr; }
    const Catalogue& catalogue();
    /// Drops the catalogue that was read and the open tables. For creating a company.
    void forgetCatalogue();
    RecordLocks& locks() { return *m_locks; }
    journal::JournalStore& journal() { return *m_journal; }
    TransientIndexes& transientIndexes() { return m_transientIndexes; }

    /// The table of that name (case-insensitive), opened on first use.
    /// @throws DataError(NoSuchTable, Damaged).
    StoredTable& table(const QString& name);

    std::chrono::milliseconds lockWait{2000};

    /// A user's statement, cached or newly prepared. Give it back with returnStatement().
    /// @throws DataError(Syntax, NoSuchTable, NoSuchField ...).
    sqlite3_stmt* prepare(const QString& sql);
    void returnStatement(const QString& sql, sqlite3_stmt* statement);

    enum class WriteUnit {
        Statement,  ///< the body runs one SQL statement, which is a transaction by itself
        Records     ///< the body's reads and writes become one transaction
    };
    /// Runs a body that writes records. Record locks taken for the statement are released at its
    /// commit. If another program holds a record, the changes are rolled back, the lock is waited
    /// for outside SQLite's write lock, and the body runs again until the lock wait expires.
    /// @throws DataError(Locked) naming table and record, and whatever the body throws.
    void write(WriteUnit unit, const std::function<void()>& body);
    /// As Database::inTransaction. A nested call joins the outer transaction.
    void inTransaction(const std::function<void()>& body);

    /// As Database::deferFlushes and flush: the write-ahead log's flushes.
    void deferFlushes(bool on);
    void flush();
    /// The same if something was committed since the last flush: before a wait.
    void flushBeforeWait();

    /// Thrown through write() when another program holds a record.
    struct RecordIsHeld {
        QString table;
        QString record;
    };
    [[noreturn]] void throwHeld(const StoredTable& table, const QByteArray& record) const;

    // Exceptions cannot pass through SQLite's callbacks: they are kept here and rethrown
    // afterwards.
    void keepFailure(std::exception_ptr failure) { m_failure = std::move(failure); }
    void clearFailure() { m_failure = nullptr; }
    /// Rethrows the kept exception, if any.
    void throwFailure();

    /// Suspends the authorizer's name checks for the engine's own statements, which may be prepared
    /// while a user's statement is.
    class InternalUse {
      public:
        explicit InternalUse(Connection& connection);
        ~InternalUse();
        InternalUse(const InternalUse&) = delete;
        InternalUse& operator=(const InternalUse&) = delete;

      private:
        Connection& m_connection;
        bool m_previous;
    };

    /// Counts the connected virtual tables and open cursors. Only used on a host's connection,
    /// which must have no prepared statements left when the host closes it.
    void countSqlTables(int more);
    void countCursors(int more);

  private:
    static int authorize(void* self, int action, const char* first, const char* second,
                         const char* database, const char* trigger);
    void configure();
    void checkFile();
    [[noreturn]] void throwLocked(const RecordIsHeld& held) const;

    void stored();
    void runTransaction(const std::function<void()>& body);
    void undoStatement();

    QString m_fileName;
    SqliteHandle m_handle;  // empty on a host's connection
    sqlite3* m_db = nullptr;
    std::unique_ptr<RecordLocks> m_locks;
    std::unique_ptr<journal::JournalStore> m_journal;
    std::unique_ptr<Catalogue> m_catalogue;
    QHash<QString, std::shared_ptr<StoredTable>> m_tables;  // by folded name
    struct CachedStatement {
        QString sql;
        sqlite3_stmt* statement;
    };
    std::vector<CachedStatement> m_cache;  // oldest first
    Statement m_begin;
    Statement m_commit;
    TransientIndexes m_transientIndexes;
    std::exception_ptr m_failure;
    bool m_checksNames = false;
    bool m_authorizerCalled = false;  // authorize() was called for the statement being prepared
    bool m_inTransaction = false;
    bool m_defersFlushes = false;
    std::optional<std::chrono::steady_clock::time_point> m_unflushedSince;
    int m_sqlTables = 0;
    int m_cursors = 0;
};

}  // namespace engines::embedded
