#pragma once

#include <functional>
#include <vector>

#include "vatchange/journal/net_change.h"
#include "vatchange/journal/undo.h"
#include "vatchange/journal/undo_signals.h"
#include "vatchange/journal/undo_tables.h"

namespace vatchange {

/// Takes back what a run did to one record.
class UndoRecords {
  public:
    UndoRecords(data::Database& database, const UndoOptions& options, UndoPorts& ports,
                UndoResult& result);

    /// Gets what is left as it is, before the record is changed.
    using Tell = std::function<void(const std::vector<UndoConflict>&)>;
    /// @throws data::DataError; Locked if another program holds the record.
    void takeBack(UndoTable& table, const NetChange& change, const Tell& tell);

  private:
    /// Result of comparing a record with what the run left.
    struct Judged {
        QByteArray restored;  ///< with the values from before where the run's still stand
        bool intact = true;   ///< all the run's values stand, dates of change aside
        std::vector<UndoConflict> conflicts;
    };

    Judged judge(const UndoTable& table, const NetChange& change, const QByteArray& present) const;
    void takeBackExisting(UndoTable& table, const NetChange& change, data::RecordId record,
                          const QByteArray& present, const Tell& tell);
    void takeBackGone(UndoTable& table, const NetChange& change, const Tell& tell);
    void putBack(UndoTable& table, const NetChange& change, const Tell& tell);
    void setDates(const UndoTable& table, QByteArray& record) const;
    void repeatSignal(UndoTable& table, const NetChange& change);

    const UndoOptions& m_options;
    UndoResult& m_result;
    UndoSignals m_signals;
};

}  // namespace vatchange
