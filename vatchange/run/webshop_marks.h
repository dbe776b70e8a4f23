#pragma once

#include "vatchange/ports/run_ports.h"
#include "vatchange/run/webshop_mark_writer.h"

namespace vatchange {

/// Web shop change marks of products during a run. A mark that cannot be written is reported and
/// the run goes on: by message the first time, in the log alone afterwards, so that a broken mark
/// table does not ask for a click per product.
class WebShopMarks {
  public:
    WebShopMarks(data::Database& database, RunPorts& ports);

    void mark(const QString& productNumber, QChar letter);
    /// What the first mark that failed reported; empty when none has.
    const QString& failure() const { return m_failure; }
    qint64 written() const { return m_written; }

  private:
    RunPorts& m_ports;
    WebShopMarkWriter m_writer;
    QString m_failure;
    qint64 m_written = 0;
};

}  // namespace vatchange
