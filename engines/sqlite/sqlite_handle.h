#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include "data/error.h"
#include "engines/data_names.h"

namespace engines::sqlite {

/// The error kind of a SQLite result code; `message` distinguishes SQL errors.
ErrorKind errorKind(int code, const char* message);

/// Throws the DataError of the connection's last failure. `table` is the table or file concerned.
[[noreturn]] void throwSqlite(sqlite3* db, int code, const QString& table);

/// One database file of SQLite; closes it. Every file that the engine opens is opened here.
class SqliteHandle {
  public:
    enum class Mode { ReadWrite, Create };

    SqliteHandle() = default;
    /// A file that is made may be read and written by owner and group and read by all, as far as
    /// the umask lets them. @throws DataError(NoConnection, Io ...) naming the file.
    SqliteHandle(const QString& fileName, Mode mode);
    ~SqliteHandle();
    SqliteHandle(SqliteHandle&& other) noexcept;
    SqliteHandle& operator=(SqliteHandle&& other) noexcept;

    sqlite3* get() const { return m_db; }

    /// Names the virtual file system that files are opened with from now on; nullptr is the
    /// platform's own. For tests with disks that fail.
    static void setFileSystem(const char* name);

  private:
    sqlite3* m_db = nullptr;
};

/// One prepared statement. All functions throw DataError for failures of SQLite. Bound blobs are
/// not copied: they must live until the statement is reset.
class Statement {
  public:
    Statement() = default;
    /// `text` is the product's own SQL. `table` is named by errors.
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
    /// Never fails: what a step reported was thrown by that step.
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

/// Runs SQL of the product's own that returns nothing of interest.
void execute(sqlite3* db, const QByteArray& sql, const QString& table = {});

/// A name as SQL writes it: in double quotes, quotes doubled.
QByteArray quotedName(const QString& name);

}  // namespace engines::sqlite
