#pragma once

#include "framework/core/webshop_mark.h"
#include "vatchange/run/run_ports.h"

namespace vatchange {

/// Web shop change marks of products during a run. A mark that cannot be written is reported and
/// the run goes on: by message the first time, in the log alone afterwards, so that a broken mark
/// table does not ask for a click per product.
class WebShopMarks {
  public:
    WebShopMarks(data::Database& database, RunPorts& ports);

    void mark(const QString& productNumber, QChar letter);
    bool failed() const { return m_failed; }

  private:
    RunPorts& m_ports;
    framework::WebShopMarkWriter m_writer;
    bool m_failed = false;
};

}  // namespace vatchange
