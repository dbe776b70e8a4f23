#pragma once

#include <QLoggingCategory>
#include <functional>

#include "data/sql/uni_query.h"
#include "data/table/tb_table.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

// Off unless QT_LOGGING_RULES="taksavaihe.orders.debug=true": one line per row.
Q_DECLARE_LOGGING_CATEGORY(kOrderTrace)

/// Writes a debug line with a time stamp.
void traceOrders(const QString& text);

/// Iterates over orders, for both kinds: status, progress, error context and the user's stop.
class OrderWalk {
  public:
    explicit OrderWalk(RunPorts& ports) : m_ports(ports) {}

    /// Opens the query, calls `convert` with each number in column `numberField`, closes it.
    /// Prefixes the detail of a database error with the order and, for table `rows`, the current
    /// row. Starts no further order after the user's stop.
    void run(data::TUniQuery& query, const QString& numberField, const QString& statusName,
             const data::TtbTable& rows, const std::function<void(qint64 order)>& convert);

    /// Polled between rows; the current order still gets its totals.
    bool stopRequested();
    bool stopped() const { return m_stopped; }

  private:
    RunPorts& m_ports;
    bool m_stopped = false;
};

}  // namespace vatchange
