#pragma once

#include "vatchange/ports/run_ports.h"
#include "vatchange/run/webshop_mark_writer.h"

namespace vatchange {

/// Writes web shop change marks of products during a run. A failed mark does not stop the run: the
/// first failure shows a message, later ones are only logged, so a broken table does not need a
/// click per product.
class WebShopMarks {
  public:
    WebShopMarks(data::Database& database, RunPorts& ports);

    /// Returns false if the mark failed; the failure has been reported.
    bool mark(const QString& productNumber, QChar letter);
    /// Message of the first failure; empty if none.
    const QString& failure() const { return m_failure; }
    qint64 written() const { return m_written; }

  private:
    RunPorts& m_ports;
    WebShopMarkWriter m_writer;
    QString m_failure;
    qint64 m_written = 0;
};

}  // namespace vatchange
