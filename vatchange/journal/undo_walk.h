#pragma once

#include <functional>
#include <map>

#include "data/journal/id_sets.h"
#include "vatchange/journal/net_change.h"
#include "vatchange/journal/run_chain.h"
#include "vatchange/journal/undo.h"
#include "vatchange/journal/undo_orders.h"
#include "vatchange/journal/undo_records.h"
#include "vatchange/journal/undo_tables.h"

namespace vatchange {

/// Takes a run's records back, from the last change to the first. Needs a few bits of memory per
/// record.
class UndoWalk {
  public:
    UndoWalk(data::Database& database, qint64 run, const UndoOptions& options, UndoTables& tables,
             UndoPorts& ports, UndoResult& result);

    /// Collects the records concerned. Must be called first.
    void prepare();
    /// Records that the undo would change, by index of the run's tables; labels, web shop marks
    /// and the run mark are left out.
    const data::IdSets& records() const { return m_records; }
    bool nothingSelected() const { return m_seen.count() == 0; }

    /// Reads what an interrupted undo has recorded so far.
    void takeUp(qint64 undo);
    void perform();

  private:
    using RecordKey = std::pair<int, data::RecordId>;

    bool selects(const UndoTable& table, const QByteArray& key) const;
    void visitEntry(const data::JournalEntry& entry);
    NetChange wholeChange(const data::JournalEntry& last);
    void gather(const data::JournalEntry& last);
    void takeBack(UndoTable& table, const NetChange& change);
    void tell(qint64 seq, const std::vector<UndoConflict>& conflicts);
    void takeBackHeld();

    data::RunJournal& m_journal;
    const qint64 m_run;
    const UndoOptions& m_options;
    UndoTables& m_tables;
    UndoPorts& m_ports;
    UndoResult& m_result;
    UndoOrders m_orders;
    UndoRecords m_undo;

    data::IdSets m_taken;    // seqs, see takenBack()
    data::IdSets m_seen;     // records selected
    data::IdSets m_several;  // of them, those with several entries
    data::IdSets m_records;
    data::IdSets m_handled;  // of m_several
    data::IdSets m_told;     // seqs whose conflicts an earlier part has told
    std::map<RecordKey, NetChange> m_gathered;
    std::vector<NetChange> m_held;
};

}  // namespace vatchange
