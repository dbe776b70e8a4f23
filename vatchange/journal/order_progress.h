#pragma once

#include "data/engine/run_journal.h"
#include "data/journal/id_set.h"
#include "vatchange/journal/order_fingerprint.h"

namespace vatchange {

/// What the journal says and is told about the orders of one kind during a run. Without a journal
/// no order is finished and nothing is told.
class OrderProgress {
  public:
    OrderProgress() = default;
    /// `finished`: numbers of the orders that an earlier attempt of the run has finished;
    /// `marginMarks`: rows whose margin mark it has set.
    OrderProgress(data::RunJournal* journal, data::IdSet finished, data::IdSet marginMarks)
        : m_journal(journal),
          m_finished(std::move(finished)),
          m_marginMarks(std::move(marginMarks)) {}

    bool isFinished(qint64 order) const { return m_finished.contains(order); }
    /// Call after an order's header has been posted, all its rows having been visited.
    /// @throws data::DataError.
    void finish(const QString& table, qint64 order, data::TableFile& headers,
                data::TableFile& rows) {
        if (m_journal)
            m_journal->mark(orderMarkText({table, order, orderFingerprint(headers, rows, order)}));
    }

    /// Call around the post of a margin mark.
    void setMarginMark(bool on) {
        if (m_journal)
            m_journal->setOrigin(on ? kMarginMarkOrigin : 0);
    }
    bool hasMarginMark(data::RecordId row) const { return m_marginMarks.contains(row); }
    /// The row has been converted: its margin is a margin again.
    void clearMarginMark(data::RecordId row) { m_marginMarks.remove(row); }

    /// Origin of the changes that set a margin mark on a sales order row; other changes of orders
    /// have none.
    static constexpr qint64 kMarginMarkOrigin = 1;

  private:
    data::RunJournal* m_journal = nullptr;
    data::IdSet m_finished;
    data::IdSet m_marginMarks;
};

}  // namespace vatchange
