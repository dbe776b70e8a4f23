#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "data/engine/engine.h"
#include "vatchange/definition/change_definition.h"
#include "vatchange/ports/run_steps.h"

namespace vatchange {

/// What one step of a run would change, before it is run.
struct RowCount {
    RunStep step;
    QString what;            ///< as in the result of the run: "Kampanjarivit"
    QStringList statements;  ///< each counts some of the rows
};

/// The counts of a definition, in the order of the run's steps.
std::vector<RowCount> rowCounts(const ChangeDefinition& definition);

/// Counts the rows of a step. A company without store prices has 0 of them.
/// @throws data::DataError.
qint64 countRows(data::Database& database, const RowCount& count);

}  // namespace vatchange
