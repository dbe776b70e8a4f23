#pragma once

#include <QString>
#include <functional>

#include "data/engine/run_journal.h"
#include "vatchange/journal/run_chain.h"

namespace vatchange {

/// Something that an undo leaves as it is.
struct UndoConflict {
    enum class Reason {
        Changed,  ///< the field no longer holds what the run left
        Gone,     ///< the record no longer exists
        Exists,   ///< the run deleted the record, and there is one with its key now
        Order,    ///< header or rows of the order were changed
        Held      ///< another program holds the record; a repeated undo takes it up again
    };
    Reason reason = Reason::Changed;
    QString table;
    QString key;    ///< the fields of key 0, joined by a blank
    QString field;  ///< empty for a whole record or order
    QString after;  ///< what the run left, as in an export
    QString present;
};

/// What an undo reports while it is going on.
class UndoPorts {
  public:
    virtual ~UndoPorts() = default;
    virtual void log(const QString& line) = 0;           ///< one line of the change log, Finnish
    virtual void webShopLog(const QString& /*line*/) {}  ///< of the web shop log, if that is kept
    virtual void conflict(const UndoConflict& conflict) = 0;
    virtual void progress(qint64 /*done*/, qint64 /*total*/) {}
    virtual bool cancelled() { return false; }  ///< polled between records
};

struct UndoOptions {
    UndoScope scope = {};
    bool dryRun = false;  ///< judges and reports, changes nothing
    QString user = {};    ///< for the journal
    QString computer = {};
    std::function<qint64()> logSize = {};  ///< of the change log, to find the undo's lines again
};

struct UndoResult {
    qint64 run = 0;  ///< the undo's own run; 0 for a dry run
    bool resumed = false;
    bool cancelled = false;
    qint64 restored = 0;   ///< records that got values from before
    qint64 removed = 0;    ///< inserted by the run
    qint64 putBack = 0;    ///< deleted by the run
    qint64 conflicts = 0;  ///< fields, records and orders left as they are, without held ones
    qint64 held = 0;       ///< records left because another program holds them

    bool clean() const { return !cancelled && conflicts == 0 && held == 0; }
};

/// Takes a run back, latest change first, and records that as a run of its own. A record is judged
/// by its net change: fields that still hold what the run left get their value from before, others
/// are reported and left. An order that was changed since in any byte is left whole. Continues an
/// undo of the same run and scope that was not finished. Holds the company's run lock.
///
/// An exact undo restores dates and times of change too; the ordinary one sets them to now, and
/// labels and marks products again whose label or mark was consumed.
/// @throws RunRefused, with nothing changed; data::DataError, after which a repeated call goes on.
UndoResult undoRun(data::Database& database, qint64 run, const UndoOptions& options,
                   UndoPorts& ports);

}  // namespace vatchange
