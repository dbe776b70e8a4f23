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

/// The two interfaces behind which every engine stands: keyed records and SQL. Record tables
/// (TtbTable) and queries (TUniQuery) are written against these alone.
namespace data {

/// An engine's address of a record: stable while the record exists, never reused within a session.
using RecordId = qint64;

struct StoredRecord {
    RecordId id = 0;
    QByteArray bytes;  ///< exactly the layout's record length
};

/// Values of the leading fields of a key, in key order; may be fewer than the key has.
using KeyValues = std::vector<Value>;

enum class SeekOp { Equal, GreaterOrEqual, Greater, LessOrEqual, Less };
enum class Direction { Forward, Backward };

/// The records of one table. No call leaves anything open in the engine: what it returns is a copy,
/// and a later call finds the database as it is then. Fewer than `max` records come only from the
/// end of the key (with Equal: of the matching values). All calls throw DataError on failure.
class TableFile {
  public:
    virtual ~TableFile() = default;

    virtual const RecordLayout& layout() const = 0;
    virtual const std::vector<KeyDef>& keys() const = 0;  ///< in key number order

    virtual qint64 recordCount() = 0;

    /// The record at one end of a key and up to max - 1 that follow it: Forward from the first,
    /// Backward from the last. Records of equal key come in the order they were inserted
    /// (Backward: reversed). Empty when the table is.
    virtual std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) = 0;

    /// Positions by the values of the key's leading fields and returns up to `max` records from
    /// there. Equal, GreaterOrEqual and Greater go forward from the first match; LessOrEqual and
    /// Less backward from the last. "Less" and "Greater" compare the given leading fields only.
    /// Equal returns only records whose leading fields equal the values.
    /// @throws DataError(BadValue) when a value is none of its field's.
    virtual std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values,
                                           int max) = 0;

    /// Up to `max` records after (Forward) or before (Backward) `from` in key order, `from` itself
    /// left out. `from` need not exist any more: its key value and id give the place.
    virtual std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                           int max) = 0;

    /// The record `count` places (1 or more) after (Forward) or before (Backward) `from` in key
    /// order; without `from` counted from the end where the direction begins, 1 being the first
    /// there. Nothing when the key ends earlier. `from` need not exist any more.
    /// Engines that can count along a key without reading records override the walk.
    virtual std::optional<StoredRecord> skip(int key, const std::optional<StoredRecord>& from,
                                             Direction direction, qint64 count);
    /// How many records stand in key order at or after `from` (without it: from the first on) and
    /// before `to`; 0 when `to` is not after `from`. Neither need exist.
    virtual qint64 countBetween(int key, const std::optional<StoredRecord>& from,
                                const StoredRecord& to);
    /// Shows up to `max` records after (Forward) or before (Backward) `from`, or from the end of
    /// the key where the direction begins, to `see`, until that returns false. The bytes live only
    /// during the call; `see` may neither keep them nor write to the database.
    /// @return the last record shown; nothing when there was none.
    using Visitor = std::function<bool(RecordId id, const QByteArray& bytes)>;
    virtual std::optional<StoredRecord> visit(int key, const std::optional<StoredRecord>& from,
                                              Direction direction, int max, const Visitor& see);

    /// As visit(), in the order in which the engine reads fastest, after the record at an address
    /// (nothing: from the beginning). @return the address of the last record shown.
    virtual std::optional<RecordId> visitStored(std::optional<RecordId> after, int max,
                                                const Visitor& see);
    /// As visit() forward, with the addresses alone: what the key tells without its records.
    virtual std::optional<StoredRecord> visitIds(int key, const std::optional<StoredRecord>& from,
                                                 int max, const std::function<void(RecordId)>& see);

    /// Compares the leading key fields of a record with values: negative, 0 or positive, in the
    /// order of the key (also for descending segments).
    virtual int compare(int key, const QByteArray& record, const KeyValues& values) const = 0;

    /// The record at an address; nothing when it is gone.
    virtual std::optional<StoredRecord> get(RecordId id) = 0;

    /// Takes the record's lock, waiting at most `wait`. @return false when somebody else holds it
    /// to the end of the wait. Locks of one process do not exclude each other; each lock() that
    /// returned true needs its unlock(). A lock vanishes with its process.
    virtual bool lock(RecordId id, std::chrono::milliseconds wait) = 0;
    virtual void unlock(RecordId id) = 0;

    /// Stores a new record. An auto-increment field that holds 0 gets the next number (written into
    /// `bytes`). @throws DataError(DuplicateKey, ...).
    virtual RecordId insert(QByteArray& bytes) = 0;
    /// Replaces a record. Final at once. @throws DataError(DuplicateKey, Gone, Locked, ...).
    virtual void update(RecordId id, const QByteArray& bytes) = 0;
    virtual void remove(RecordId id) = 0;
};

/// A result column of a SQL statement.
struct SqlColumn {
    QString name;
};

/// One prepared statement. Parameters are named (":name"), looked up without regard to case.
class SqlStatement {
  public:
    virtual ~SqlStatement() = default;
    virtual QStringList parameterNames() const = 0;  ///< without the colon, as written, each once
    virtual void bind(const QString& name, const Value& value) = 0;
    virtual const std::vector<SqlColumn>& columns() const = 0;  ///< empty: returns no rows
    /// Fetches the next row. @return false at the end. The first call runs the statement.
    virtual bool step() = 0;
    /// Value of a column of the current row: invalid (NULL), qint64, double or QString.
    virtual Value value(int column) const = 0;
    /// Runs a statement that returns no rows. @return the number of rows affected.
    virtual qint64 execute() = 0;
    /// Ready for new parameters; ends the reading of a result.
    virtual void reset() = 0;
};

class RunJournal;

/// A company's database: one connection for records and SQL alike.
class Database {
  public:
    virtual ~Database() = default;
    virtual QString name() const = 0;
    virtual QStringList tableNames() = 0;  ///< from the catalogue, as written there, sorted

    /// Opens a table's records. The layout comes from the catalogue when that lists the table, else
    /// from its compiled dictionary. @throws DataError(NoSuchTable).
    virtual std::unique_ptr<TableFile> openTable(const QString& tableName) = 0;

    /// @throws DataError(Syntax, NoSuchTable ...). A short cache keeps prepared statements by text.
    virtual std::unique_ptr<SqlStatement> prepare(const QString& sql) = 0;

    /// How long a statement or post waits for somebody else's record lock. Default 2000 ms.
    virtual void setLockWait(std::chrono::milliseconds wait) = 0;

    /// False where records and SQL reach the engine as two sessions, so that a lock taken with
    /// TableFile::lock() stops the same program's statements too: it has to be given back before
    /// a statement that writes the record.
    virtual bool statementsPassRecordLocks() const { return true; }

    /// Marks that a run is going on in this company. @return false when another process has done
    /// so. The mark vanishes with its process. Calls nest.
    virtual bool beginRun() = 0;
    virtual void endRun() = 0;

    /// The company's run journal; nullptr where the engine keeps none, as some of the tests' do.
    virtual RunJournal* journal() { return nullptr; }

    /// Runs `body` as one transaction: all of it is stored, or (when it throws) nothing. For import
    /// and creation; a run never uses it.
    virtual void inTransaction(const std::function<void()>& body) = 0;
};

}  // namespace data
