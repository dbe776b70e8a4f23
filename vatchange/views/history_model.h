#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "data/engine/run_journal.h"

namespace vatchange {

/// A run in the history. Number 0: an unfinished run of an older version, which kept no journal.
struct HistoryRun {
    data::JournalRun head;
    qint64 seconds = -1;  ///< of all its attempts; -1 while it goes on, or unknown
};

/// The runs of a company, newest first.
class HistoryModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum Column { Number, Started, Duration, What, Result, Records, Who, BatchColumn, Columns };

    explicit HistoryModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

    /// Reads the runs again. @throws data::DataError; the model is as before.
    void read(data::RunJournal* journal);

    const HistoryRun& run(int row) const { return m_runs[static_cast<size_t>(row)]; }
    /// -1: there is none of this number.
    int rowOf(qint64 number) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<HistoryRun> m_runs;
};

}  // namespace vatchange
