#pragma once

#include <QLoggingCategory>
#include <functional>

#include "data/sql/uni_query.h"
#include "data/table/tb_table.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

// Off unless QT_LOGGING_RULES="taksavaihe.orders.debug=true": one line a row.
Q_DECLARE_LOGGING_CATEGORY(kOrderTrace)

/// One line of debugger output, with the time before it.
void traceOrders(const QString& text);

/// The walk over the listed orders, which both kinds share: status, progress, the place of a
/// failure and the user's stop.
class OrderWalk {
  public:
    explicit OrderWalk(RunPorts& ports) : m_ports(ports) {}

    /// Opens the query, calls `convert` with each number in its column `numberField`, closes it.
    /// A database error gets the order, and if it is of table `rows` the row in hand, before its
    /// detail. Begins no further order once the user has stopped.
    void run(data::TUniQuery& query, const QString& numberField, const QString& statusName,
             const data::TtbTable& rows, const std::function<void(qint64 order)>& convert);

    /// Asked between two rows; the order in hand still gets its totals.
    bool stopAsked();
    bool stopped() const { return m_stopped; }

  private:
    RunPorts& m_ports;
    bool m_stopped = false;
};

}  // namespace vatchange
