#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "data/engine/engine.h"

namespace data {

enum class RunKind { Change, Undo };

enum class RunState {
    Running,
    Interrupted,  ///< its process died; never stored: a stored Running of a dead process
    Stopped,      ///< by the user, or because the system ends the program
    Incomplete,   ///< some products or orders were not converted
    Errors,       ///< other steps failed
    Done,
    Accepted,  ///< unfinished, but accepted as it is
    PartlyUndone,
    Undone
};

/// Interrupted, Stopped or Incomplete.
bool isUnfinished(RunState state);

/// The head of a run in the journal.
struct JournalRun {
    qint64 number = 0;  ///< from 1, in the order of the first starts
    RunKind kind = RunKind::Change;
    RunState state = RunState::Running;
    QString definition;  ///< its name; empty if it was not saved
    QDateTime started;   ///< local time
    QDateTime ended;     ///< invalid while running or interrupted; the last end after a resume
    qint64 rows = 0;     ///< changed records, each counted once
    QString user;
    QString computer;
    qint64 batch = 0;      ///< number of the first run of its batch; 0: no batch
    qint64 undoneRun = 0;  ///< of an undo: the run that it undoes
};

enum class Operation { Update, Insert, Delete };

/// Bytes of a record that a change replaced: whole fields. `before` is empty for an insert, `after`
/// for a delete.
struct ByteChange {
    int offset = 0;
    QByteArray before;
    QByteArray after;

    bool operator==(const ByteChange&) const = default;
};

/// A table's description when a run first changed it. The changes can only be read while the
/// catalogue's description is the same.
struct JournalTable {
    QString name;
    int recordLength = 0;
    QByteArray fingerprint;  ///< see layoutFingerprint()
};

/// One recorded change of a record, or a mark between changes.
struct JournalEntry {
    qint64 seq = 0;  ///< from 1 within the run, without gaps
    bool isMark = false;
    QByteArray mark;  ///< of a mark: its text

    int table = 0;  ///< index into RunJournal::tables()
    RecordId record = 0;
    Operation operation = Operation::Update;
    qint64 origin = 0;  ///< see RunJournal::setOrigin()
    QByteArray key;     ///< bytes of key 0's fields, concatenated; the change does not affect them
    std::vector<ByteChange> changes;  ///< by offset

    bool operator==(const JournalEntry&) const = default;
};

/// The run journal of a company: the records changed by its runs, with old and new bytes, in order.
/// A change and its entry are committed together. Every function throws DataError; Damaged if the
/// stored journal is corrupt.
/// At most one run records at a time: that of the process holding the company's run mark
/// (Database::beginRun).
class RunJournal {
  public:
    virtual ~RunJournal() = default;

    /// Oldest first. Empty if the company has no journal yet.
    virtual std::vector<JournalRun> runs() = 0;
    /// @return the run; nothing if there is none with this number.
    std::optional<JournalRun> run(qint64 number);

    /// Starts a run and records this connection's changes from now on. Number, state and rows of
    /// `head` are ignored. `notes` are committed durably with the head. A change (not an undo)
    /// removes finished runs older than kKeptDays.
    virtual qint64 begin(const JournalRun& head,
                         const std::vector<std::pair<QString, QByteArray>>& notes) = 0;
    /// Resumes recording an existing run; new entries follow the stored ones.
    virtual void resume(qint64 run) = 0;
    /// Ends recording and stores state, end and number of changed records.
    virtual void end(RunState state) = 0;
    /// Number of the run being recorded; 0 if none.
    virtual qint64 recording() const = 0;

    static constexpr int kKeptDays = 400;

    /// Origin of the following changes, until set again: in a run the position (from 1) in the
    /// step's list of rows, in an undo the seq of the entry being undone; 0: none.
    virtual void setOrigin(qint64 origin) = 0;
    /// Appends a mark to the run being recorded.
    virtual void mark(const QByteArray& text) = 0;

    virtual void setState(qint64 run, RunState state) = 0;
    /// Deletes a run with its entries and notes.
    virtual void forget(qint64 run) = 0;

    /// Entries of a run, at most `max`: Forward those after `from` (0: from the first), Backward
    /// those before it (0: from the last), in that order.
    virtual std::vector<JournalEntry> entries(qint64 run, qint64 from, Direction direction,
                                              int max) = 0;
    /// Calls `see` for each entry in order until it returns false.
    void visit(qint64 run, Direction direction,
               const std::function<bool(const JournalEntry&)>& see);
    /// Seq of the run's last entry; 0 if it has none.
    virtual qint64 lastEntry(qint64 run) = 0;
    /// The tables that a run changed; indexed by JournalEntry::table.
    virtual std::vector<JournalTable> tables(qint64 run) = 0;

    /// Named data of a run (definition, rates, lists of rows); run 0: of the company (a batch).
    virtual std::optional<QByteArray> note(qint64 run, const QString& name) = 0;
    /// An empty value removes the note.
    virtual void setNote(qint64 run, const QString& name, const QByteArray& value) = 0;

    /// Errors of the stored journal, one English line each; empty if there are none.
    virtual QStringList check() = 0;
};

}  // namespace data
