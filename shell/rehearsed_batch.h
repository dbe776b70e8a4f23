#pragma once

#include <memory>
#include <vector>

#include "shell/batch.h"
#include "vatchange/rehearsal/rehearsal.h"

namespace shell {

/// An unattended batch that is rehearsed ("/E /KOEAJO"): from its begin to its end the program's
/// current company is a private copy, so the batch runs as it is. What a person must know goes to
/// standard error.
class RehearsedBatch {
  public:
    /// Copies the current company. @return nullptr, with the program's exit status, if that is not
    /// possible or the system has asked the program to end.
    static std::unique_ptr<RehearsedBatch> begin(ExitStatus& status);

    /// Adapts the ports of the batch: no general log, refusals to standard error too; refused while
    /// a run of the company itself is going on.
    void adapt(BatchPorts& ports);

    /// Writes the results of what was run. @return false if that failed; told on standard error.
    bool finish();

  private:
    RehearsedBatch() = default;
    void writeReport();

    bool m_companyIsBusy = false;
    std::vector<qint64> m_runs;
    QStringList m_refusals;
    std::unique_ptr<vatchange::Rehearsal> m_rehearsal;
};

}  // namespace shell
