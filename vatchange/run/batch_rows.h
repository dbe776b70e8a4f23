#pragma once

#include "vatchange/run/dependent_step.h"

namespace vatchange {

/// Rows of a dependent table that an unfinished run of the same batch has changed and whose
/// product still waits for that run: changed by this run too they would be multiplied twice.
class BatchRows {
  public:
    /// @throws data::DataError.
    BatchRows(RunContext& run, const DependentStep& step);

    /// The number of the run that has changed the row; 0 if none has.
    qint64 runThatChanged(const data::KeyValues& row);

  private:
    struct Earlier {
        qint64 number;
        data::IdSet records;
        std::unique_ptr<data::TUniQuery> waiting;  // finds a product of parameter p that waits
    };

    const DependentStep& m_step;
    KeyRecords m_table;
    std::vector<Earlier> m_runs;
};

}  // namespace vatchange
