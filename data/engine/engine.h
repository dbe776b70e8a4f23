#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "data/error.h"
#include "data/record/record_layout.h"
#include "data/value.h"

/// Interfaces implemented by every engine: keyed records and SQL. Record tables (TtbTable) and
/// queries (TUniQuery) use only these.
namespace data {

/// Address of a record: stable while the record exists, never reused within a session.
using RecordId = qint64;

struct StoredRecord {
    RecordId id = 0;
    QByteArray bytes;  ///< the layout's record length
};

/// Values of the leading fields of a key, in key order; may be fewer than the key's segments.
using KeyValues = std::vector<Value>;

enum class SeekOp { Equal, GreaterOrEqual, Greater, LessOrEqual, Less };
enum class Direction { Forward, Backward };

/// The records of one table. Every call runs to completion and returns copies; a later call sees
/// the database as it is then. Fewer than `max` records are returned only at the end of the key
/// (for Equal: of the matching values). All calls throw DataError on failure.
class TableFile {
  public:
    virtual ~TableFile() = default;

    virtual const RecordLayout& layout() const = 0;
    virtual const std::vector<KeyDef>& keys() const = 0;  ///< in key number order

    virtual qint64 recordCount() = 0;

    /// The first record of a key (Backward: the last) and up to max - 1 that follow in that
    /// direction. Records of equal key come in insertion order (Backward: reversed).
    virtual std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) = 0;

    /// Positions by the values of the key's leading fields and returns up to `max` records from
    /// there. Equal, GreaterOrEqual and Greater read forward from the first match, LessOrEqual and
    /// Less backward from the last. Only the given leading fields are compared. Equal returns only
    /// records whose leading fields equal the values.
    /// @throws DataError(BadValue) if a value does not fit its field.
    virtual std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values,
                                           int max) = 0;

    /// Up to `max` records after (Forward) or before (Backward) `from` in key order, without
    /// `from`. `from` need not exist: its key value and id give the position.
    virtual std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                           int max) = 0;

    /// The record `count` (>= 1) positions after (Forward) or before (Backward) `from` in key
    /// order; without `from`, the count-th from the end where the direction begins. Nothing past
    /// the end of the key. `from` need not exist.
    /// The default implementation reads all records in between.
    virtual std::optional<StoredRecord> skip(int key, const std::optional<StoredRecord>& from,
                                             Direction direction, qint64 count);
    /// Number of records at or after `from` (default: the first) and before `to` in key order; 0 if
    /// `to` is not after `from`. Neither needs to exist.
    virtual qint64 countBetween(int key, const std::optional<StoredRecord>& from,
                                const StoredRecord& to);
    /// Calls `see` for up to `max` records after (Forward) or before (Backward) `from` (default:
    /// from the end where the direction begins) until it returns false. The bytes are valid only
    /// during the call; `see` must not write to the database.
    /// @return the last record visited, if any.
    using Visitor = std::function<bool(RecordId id, const QByteArray& bytes)>;
    virtual std::optional<StoredRecord> visit(int key, const std::optional<StoredRecord>& from,
                                              Direction direction, int max, const Visitor& see);

    /// As visit(), in the engine's fastest order, after the record `after` (default: from the
    /// beginning). @return the id of the last record visited.
    virtual std::optional<RecordId> visitStored(std::optional<RecordId> after, int max,
                                                const Visitor& see);
    /// As visit() forward, with ids only: engines can answer it from the key.
    virtual std::optional<StoredRecord> visitIds(int key, const std::optional<StoredRecord>& from,
                                                 int max, const std::function<void(RecordId)>& see);

    /// The place of a record in a key, for visitKeyTexts(); `image` is the engine's own.
    struct KeyEntry {
        QByteArray image;
        RecordId id = 0;
    };
    using TextVisitor = std::function<bool(RecordId id, QByteArrayView text)>;
    /// Whether visitKeyTexts() can show the texts of a key's first segment.
    virtual bool showsKeyTexts(int /*key*/) const { return false; }
    /// As visitStored(), with the Windows-1252 text of the key's first segment in place of the
    /// record, in key order; folded by kCaseFoldWeight if the segment ignores case. For searches:
    /// a key is much smaller than its table. @return the last entry visited.
    virtual std::optional<KeyEntry> visitKeyTexts(int /*key*/,
                                                  const std::optional<KeyEntry>& /*after*/,
                                                  int /*max*/, const TextVisitor& /*see*/) {
        return std::nullopt;
    }

    /// Compares a record's leading key fields with values: negative, 0 or positive in key order
    /// (also for descending segments).
    virtual int compare(int key, const QByteArray& record, const KeyValues& values) const = 0;

    /// The record with this id; nothing if it was deleted.
    virtual std::optional<StoredRecord> get(RecordId id) = 0;

    /// Locks a record, waiting at most `wait`. @return false if another program still holds it
    /// then. Locks of one process do not exclude each other; each successful lock() needs its
    /// unlock(). A lock ends with its process.
    virtual bool lock(RecordId id, std::chrono::milliseconds wait) = 0;
    virtual void unlock(RecordId id) = 0;

    /// Inserts a record. An auto-increment field that is 0 gets the next number (written into
    /// `bytes`). @throws DataError(DuplicateKey, ...).
    virtual RecordId insert(QByteArray& bytes) = 0;
    /// Replaces a record; committed on return. @throws DataError(DuplicateKey, Gone, Locked, ...).
    virtual void update(RecordId id, const QByteArray& bytes) = 0;
    virtual void remove(RecordId id) = 0;
};

/// A result column of a SQL statement.
struct SqlColumn {
    QString name;
};

/// One prepared statement. Parameters are named (":name", case-insensitive).
class SqlStatement {
  public:
    virtual ~SqlStatement() = default;
    virtual QStringList parameterNames() const = 0;  ///< without colon, as written, each once
    virtual void bind(const QString& name, const Value& value) = 0;
    virtual const std::vector<SqlColumn>& columns() const = 0;  ///< empty if it returns no rows
    /// Fetches the next row; the first call runs the statement. @return false at the end.
    virtual bool step() = 0;
    /// Value of a column of the current row: invalid (NULL), qint64, double or QString.
    virtual Value value(int column) const = 0;
    /// Runs a statement that returns no rows. @return the number of rows affected.
    virtual qint64 execute() = 0;
    /// Ends the current result; the statement can be bound and run again.
    virtual void reset() = 0;
};

class RunJournal;

/// A company's database: one connection for both records and SQL.
class Database {
  public:
    virtual ~Database() = default;
    virtual QString name() const = 0;
    virtual QStringList tableNames() = 0;  ///< from the catalogue, spelled as there, sorted

    /// Opens a table's records. The layout comes from the catalogue if it lists the table, else
    /// from the compiled dictionary. @throws DataError(NoSuchTable).
    virtual std::unique_ptr<TableFile> openTable(const QString& tableName) = 0;

    /// Prepared statements are cached by text. @throws DataError(Syntax, NoSuchTable ...).
    virtual std::unique_ptr<SqlStatement> prepare(const QString& sql) = 0;

    /// How long a statement or post waits for another program's record lock. Default 2000 ms.
    virtual void setLockWait(std::chrono::milliseconds wait) = 0;

    /// False if records and SQL are separate sessions of the engine: TableFile::lock() then blocks
    /// this program's own statements too, and must be released before a statement that writes the
    /// record.
    virtual bool statementsPassRecordLocks() const { return true; }

    /// True if inTransaction() around the lock and read of a record and the one statement that then
    /// writes it saves work, because both belong to the statement's own transaction anyway.
    virtual bool joinsReadAndStatement() const { return false; }

    /// Marks a run in progress in this company; calls nest. @return false if another process has.
    /// The mark ends with its process.
    virtual bool beginRun() = 0;
    virtual void endRun() = 0;

    /// The company's run journal; nullptr if the engine has none.
    virtual RunJournal* journal() { return nullptr; }

    /// While on, a commit need not be durable when it returns: at most 100 ms later, before the
    /// next wait for a lock or SQL query, at flush(), and when it is switched off. Other programs
    /// see it at once and the death of the process loses nothing; a loss of power may lose the last
    /// statements, whole and in their order. For runs. An engine may ignore it.
    virtual void deferFlushes(bool /*on*/) {}
    /// Makes durable what was committed. @throws DataError(Io, DiskFull).
    virtual void flush() {}

    /// Runs `body` as one transaction, rolled back if it throws. For import and creation; a run
    /// uses it for one statement at most, see joinsReadAndStatement().
    virtual void inTransaction(const std::function<void()>& body) = 0;
};

}  // namespace data
