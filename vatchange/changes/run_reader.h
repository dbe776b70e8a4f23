#pragma once

#include <QDeadlineTimer>
#include <map>
#include <memory>
#include <vector>

#include "data/journal/id_sets.h"
#include "vatchange/changes/order_rows.h"
#include "vatchange/changes/product_names.h"
#include "vatchange/changes/read_table.h"

namespace vatchange {

/// Reads the journal of one run into a list.
class RunReader {
  public:
    /// @throws RunRefused, data::DataError.
    RunReader(data::Database& database, qint64 run, ChangeList& list);

    qint64 run() const { return m_run; }
    int place() const { return m_place; }
    /// Reads entries until the deadline. @return false at the end of the journal.
    bool read(const QDeadlineTimer& deadline);
    double share() const;

    /// The product of a number, with its name.
    int product(const QString& number);
    /// The list's record of a table's record; -1: the run did not change it.
    int recordOf(const QString& table, data::RecordId id);
    /// The row of a record's field; -1: there is none.
    int rowOf(int record, int field) const;
    /// A record's first row; -1: it has none.
    int firstRow(int record) const;

  private:
    void see(const data::JournalEntry& entry);
    /// Shows a record's rows until `see` returns false.
    template <typename See>
    void visitRows(int record, See&& see) const;
    void judge(int row, const ReadTable& table) const;
    void judgeProduct(ReadTable& table, const data::JournalEntry& entry, int record,
                      const std::vector<ReadTable::Value>& values, const QByteArray& present);
    void judgeOrderRow(const ReadTable& table, int record,
                       const std::vector<ReadTable::Value>& values, const QByteArray& present);
    int addRecord(ReadTable& table, const data::JournalEntry& entry, const QByteArray* present);
    void index(ReadTable& table) const;

    data::Database& m_database;
    data::RunJournal& m_journal;
    const qint64 m_run;
    ChangeList& m_list;
    const ChangeList::Run m_read;
    const int m_place;  // in ChangeList::runs()
    UndoTables m_undoTables;
    std::vector<std::unique_ptr<ReadTable>> m_tables;
    std::map<QString, std::unique_ptr<OrderRows>> m_orders;  // by the rows' table
    ProductNames m_names;
    data::IdSets m_takenBack;  // seqs, as ids of table 0
    const qint64 m_last;
    qint64 m_seq = 0;
    int m_firstRecord = 0;                // of this run in the list
    std::vector<int> m_firstRows;         // by record from m_firstRecord; -1: none
    std::multimap<int, int> m_laterRows;  // rows of a record that do not follow its first one
};

}  // namespace vatchange
