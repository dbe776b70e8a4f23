#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include "data/error.h"
#include "engines/data_names.h"

namespace engines::sqlite {

/// Error kind of a SQLite result code; `message` distinguishes SQL errors.
ErrorKind errorKind(int code, const char* message);

/// Throws the connection's last failure as a DataError. `table`: table or file concerned.
[[noreturn]] void throwSqlite(sqlite3* db, int code, const QString& table);

/// One open SQLite database file. The engine opens every file through this class.
class SqliteHandle {
  public:
    enum class Mode {
        ReadWrite,
        Create,
        /// Changes no byte of the file, of its write-ahead log and of the log's index, moves
        /// nothing, and removes nothing when it is closed. The log's files have to exist.
        Untouched
    };

    SqliteHandle() = default;
    /// A created file gets mode 0664 less the umask. @throws DataError(NoConnection, Io ...) naming
    /// the file.
    SqliteHandle(const QString& fileName, Mode mode);
    ~SqliteHandle();
    SqliteHandle(SqliteHandle&& other) noexcept;
    SqliteHandle& operator=(SqliteHandle&& other) noexcept;

    sqlite3* get() const { return m_db; }

    /// Sets the virtual file system used for files opened from now on; nullptr: the platform's
    /// default. For tests with failing disks.
    static void setFileSystem(const char* name);

  private:
    sqlite3* m_db = nullptr;
};

/// One prepared statement. All functions throw DataError on failure. Bound blobs are not copied:
/// they must live until the statement is reset.
class Statement {
  public:
    Statement() = default;
    /// `text`: internal SQL. `table`: for error messages.
    Statement(sqlite3* db, const QByteArray& text, QString table = {});
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&& other) noexcept;

    void bind(int index, qint64 value);
    void bind(int index, QByteArrayView blob);
    void bindText(int index, const QString& text);

    /// @return false at the end.
    bool step();
    /// Runs to the end and resets.
    void run();
    /// Never fails: step() has already thrown any error.
    void reset();

    qint64 integer(int column) const { return sqlite3_column_int64(m_statement, column); }
    /// Bytes of a column; valid until the next step or reset.
    QByteArrayView blob(int column) const;
    QByteArray bytes(int column) const { return blob(column).toByteArray(); }
    QString text(int column) const;

    sqlite3_stmt* get() const { return m_statement; }

  private:
    void check(int code);

    sqlite3_stmt* m_statement = nullptr;
    QString m_table;
};

/// Runs internal SQL and discards its results.
void execute(sqlite3* db, const QByteArray& sql, const QString& table = {});

/// Quotes a SQL identifier.
QByteArray quotedName(const QString& name);

}  // namespace engines::sqlite
