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

/// What one connection to a company's database shares: the catalogue, the open tables, the record
/// locks and the cache of SQL statements. SQL reaches it through the module of the virtual tables.
class Connection {
  public:
    /// Opens the database file and registers functions, collations and the module.
    /// @throws DataError: NoConnection, ReadOnly, Damaged (none of ours), Engine (newer format).
    explicit Connection(const QString& fileName);
    /// Serves a connection that a program other than ours has opened: registers the same on it. A
    /// statement there runs outside of write(): a record that somebody else holds fails it at once.
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
    /// Forgets what was read of the catalogue, and the open tables: for the making of a company.
    void forgetCatalogue();
    RecordLocks& locks() { return *m_locks; }
    journal::JournalStore& journal() { return *m_journal; }
    TransientIndexes& transientIndexes() { return m_transientIndexes; }

    /// The table of that name (case ignored), opened when first asked for.
    /// @throws DataError(NoSuchTable, Damaged).
    StoredTable& table(const QString& name);

    std::chrono::milliseconds lockWait{2000};

    /// A statement of the user's, from the cache when it was prepared before; returnStatement()
    /// returns it.
    /// @throws DataError(Syntax, NoSuchTable, NoSuchField ...).
    sqlite3_stmt* prepare(const QString& sql);
    void returnStatement(const QString& sql, sqlite3_stmt* statement);

    enum class WriteUnit {
        Statement,  ///< the body runs one SQL statement, which is a transaction by itself
        Records     ///< the body's reads and writes become one transaction
    };
    /// Runs a body that writes records. Locks that it takes for the statement are given up when it
    /// is stored. Where a lock stops it, what it did is undone, the lock is waited for outside of
    /// the database's own write lock, and the body runs again, to the end of the lock wait.
    /// @throws DataError(Locked) naming table and record, and what the body throws.
    void write(WriteUnit unit, const std::function<void()>& body);
    /// As Database::inTransaction. Inside of another one it is a part of that.
    void inTransaction(const std::function<void()>& body);

    /// Thrown through write() by what meets a record that somebody else holds.
    struct RecordIsHeld {
        QString table;
        QString record;
    };
    [[noreturn]] void throwHeld(const StoredTable& table, const QByteArray& record) const;

    // Failures inside SQLite's callbacks: kept here while SQLite unwinds, then thrown again.
    void keepFailure(std::exception_ptr failure) { m_failure = std::move(failure); }
    void clearFailure() { m_failure = nullptr; }
    /// Throws the kept failure when there is one.
    void throwFailure();

    /// While the user's statement is prepared, what it names is checked (see authorize); the
    /// engine's own statements that are prepared on the way pass.
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

    /// What SQLite has connected of the virtual tables and opened of their cursors. Only a host's
    /// connection counts: it has to be left without prepared statements before it is closed.
    void countSqlTables(int more);
    void countCursors(int more);

  private:
    static int authorize(void* self, int action, const char* first, const char* second,
                         const char* database, const char* trigger);
    void configure();
    void checkFile();
    [[noreturn]] void throwLocked(const RecordIsHeld& held) const;

    void runTransaction(const std::function<void()>& body);
    void undoStatement();

    QString m_fileName;
    SqliteHandle m_handle;  // empty when a host has opened the database
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
    TransientIndexes m_transientIndexes;
    std::exception_ptr m_failure;
    bool m_checksNames = false;
    bool m_authorizerCalled = false;  // SQLite asked authorize() about the statement being prepared
    bool m_inTransaction = false;
    int m_sqlTables = 0;
    int m_cursors = 0;
};

}  // namespace engines::embedded
