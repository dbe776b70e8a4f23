#pragma once

#include <QString>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>

#include "data/engine/engine.h"
#include "data/lock/lock_file.h"
#include "engines/data_names.h"

namespace engines::embedded {

/// A record by its table's number and its id.
struct RecordAddress {
    int table = 0;
    RecordId id = 0;
    bool operator==(const RecordAddress&) const = default;
    bool operator<(const RecordAddress& other) const {
        return table != other.table ? table < other.table : id < other.id;
    }
};

/// The record locks of one connection: byte ranges of a lock file next to the database. Byte 0
/// marks a run in progress; record `id` of table `t` is byte ((t + 1) << 40) + id.
/// A lock is held by edit() and the like (hold/release, counted), or by a statement that writes the
/// record (tryForStatement) until its commit. Held locks do not block the connection's own
/// statements.
class RecordLocks {
  public:
    /// @throws DataError(ReadOnly, Io) naming the lock file.
    explicit RecordLocks(const QString& lockFile);

    bool tryHold(const RecordAddress& record);
    /// Tries until the wait is over.
    bool hold(const RecordAddress& record, std::chrono::milliseconds wait);
    void release(const RecordAddress& record);

    /// Locks a record for the running statement. Many separate records of a table are merged into
    /// one range for the whole table. @return false if another program holds the record (or, then,
    /// any record of the table); the conflict is remembered for waitForConflict().
    bool tryForStatement(const RecordAddress& record);
    /// Releases the statement's locks that edit() does not hold.
    void endStatement();

    /// Waits until the record of the last conflict is free.
    /// @return false if the time is over.
    bool waitForConflict(std::chrono::steady_clock::time_point end);

    bool beginRun() { return m_file.beginRun(); }
    void endRun() { m_file.endRun(); }
    bool runGoesOn() { return m_file.runGoesOn(); }

  private:
    /// Locked ranges [first, last] of ids by first; never adjacent.
    struct TableRanges {
        std::map<RecordId, RecordId> ranges;
        bool wholeTable = false;
    };

    bool lockBytes(const RecordAddress& record, std::int64_t length);
    bool isTaken(const RecordAddress& record) const;
    static void add(std::map<RecordId, RecordId>& ranges, RecordId id);
    void unlockExceptHeld(int table, RecordId first, RecordId last);

    LockFile m_file;
    std::map<RecordAddress, int> m_held;  // with the number of holds
    std::map<int, TableRanges> m_statement;
    std::optional<RecordAddress> m_conflict;
    bool m_conflictIsTable = false;
};

}  // namespace engines::embedded
