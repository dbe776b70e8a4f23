#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "data/engine/run_journal.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// An earlier run as far as a new one has to know it.
struct EarlierRun {
    qint64 run = 0;
    data::RunState state = data::RunState::Done;
    ChangeDefinition definition;
    QStringList tables;  ///< that it changed
};

/// Dependent tables that an earlier run of the same classes has changed already, and whose rows a
/// new run would change again.
struct EarlierChange {
    qint64 run = 0;
    QStringList tables;
    bool operator==(const EarlierChange&) const = default;
};

/// A run converts dependent rows of products that still have the source class: those of an earlier
/// run are selected again if it left the products alone or did not come to its end. Undone runs and
/// disjoint restrictions do not count.
std::vector<EarlierChange> earlierRunsOfSameRows(const ChangeDefinition& definition,
                                                 const std::vector<EarlierRun>& earlier);

/// The runs of a journal for the function above, but for `except` (one that is being resumed).
/// @throws data::DataError.
std::vector<EarlierRun> earlierRuns(data::RunJournal& journal, qint64 except = 0);

/// "Asiakashinnat ja kampanjat on jo muutettu ajossa 3 ...", without "Huomaa: ".
QString earlierChangeText(const EarlierChange& rows);

}  // namespace vatchange
