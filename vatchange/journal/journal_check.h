#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "data/engine/run_journal.h"
#include "data/journal/id_sets.h"
#include "vatchange/journal/finding_list.h"
#include "vatchange/journal/later_runs.h"
#include "vatchange/rules/price_rules.h"

namespace vatchange {

/// Records by table (in capitals).
using RecordSets = std::map<QString, data::IdSet>;

/// Holds the entries of a run against the records, the last entry first, so that the first one seen
/// of a field is what the run left. Memory: a bit for each record and changed field.
class JournalCheck {
  public:
    /// `definition`: the run's; nothing for an undo, whose prices are not judged.
    JournalCheck(data::Database& database, data::RunJournal& journal, qint64 run,
                 const std::optional<ChangeDefinition>& definition, Verification& verification,
                 FindingList& findings);
    ~JournalCheck();

    void run();

    /// Records whose VAT class the run changed, and records with a change that was taken back.
    const RecordSets& converted() const { return m_converted; }
    const RecordSets& undone() const { return m_undone; }

  private:
    struct Table;
    struct Field;

    Table& table(int index);
    void see(const data::JournalEntry& entry);
    void seeField(Table& table, size_t index, const data::JournalEntry& entry,
                  const QByteArray* present);
    static void addToSums(const Table& table, Field& field, bool last, const QByteArray* present);
    void judgePrice(Table& table, const Field& field, const data::JournalEntry& entry,
                    const QByteArray* present);
    void judgeLevels(Table& table, const data::JournalEntry& entry, const QByteArray& present);
    Finding finding(Table& table, const data::JournalEntry& entry, const Field* field,
                    const QByteArray* present);

    data::Database& m_database;
    data::RunJournal& m_journal;
    qint64 m_run;
    const std::optional<ChangeDefinition>& m_definition;
    std::optional<PriceRules> m_rules;
    Verification& m_verification;
    FindingList& m_findings;
    data::IdSets m_takenBack;  // seqs, as ids of table 0
    LaterRuns m_laterRuns;
    std::vector<data::JournalTable> m_journalTables;
    std::vector<std::unique_ptr<Table>> m_tables;
    RecordSets m_converted;
    RecordSets m_undone;
};

}  // namespace vatchange
