#pragma once

#include <array>
#include <memory>
#include <optional>

#include "data/journal/id_sets.h"
#include "vatchange/journal/order_fingerprint.h"
#include "vatchange/journal/run_chain.h"

namespace vatchange {

/// Decides which orders an undo may take back: those whose bytes are what the run left. Decisions
/// are stored as marks in the undo's journal, because the undo's own changes alter the fingerprint;
/// so is the fingerprint that the undo leaves.
class UndoOrders {
  public:
    UndoOrders(data::Database& database, qint64 run, bool dryRun);

    /// A mark of the run that is undone; they come latest first.
    void see(const QByteArray& mark);
    /// A mark of the undo itself, in order, of a part that was done before. @return false if it is
    /// none of these.
    bool takeUp(const QByteArray& mark);

    enum class Judgement { TakenBack, LeftNow, Left };
    /// LeftNow: the first time an order is asked for that is left. An order that the run did not
    /// finish is taken back, field by field.
    Judgement judge(const OrderTables& tables, qint64 number);
    /// Records what was left of the order judged last.
    void closeOrder();

  private:
    struct Kind {
        const OrderTables& tables;
        std::unique_ptr<data::TableFile> headers = nullptr;
        std::unique_ptr<data::TableFile> rows = nullptr;
    };
    struct Open {
        int kind;
        qint64 number;
        bool operator==(const Open&) const = default;
    };

    static int kindOf(const QString& header);
    QByteArray present(int kind, qint64 number);
    std::optional<QByteArray> expected(int kind, qint64 number);

    data::Database& m_database;
    data::RunJournal& m_journal;
    const bool m_dryRun;
    std::array<Kind, 2> m_kinds{Kind{kSalesOrderTables}, Kind{kPurchaseOrderTables}};
    OrderFingerprints m_newer;
    std::map<std::pair<int, qint64>, QByteArray> m_marks;  // not yet asked for
    data::IdSets m_takenBack;                              // order numbers by kind
    data::IdSets m_left;
    std::optional<Open> m_open;
};

}  // namespace vatchange
