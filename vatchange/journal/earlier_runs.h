#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "data/engine/run_journal.h"
#include "vatchange/definition/definition_findings.h"

namespace vatchange {

/// Rows that a run with a percent limit has changed though their product kept its class.
enum class LimitedRows {
    None,
    QuantityDiscounts,  ///< products passed over before the first change
    All                 ///< products passed over when their turn came
};

/// An earlier run as far as a new one has to know it.
struct EarlierRun {
    qint64 run = 0;
    data::RunState state = data::RunState::Done;
    ChangeDefinition definition;
    QStringList tables;  ///< that it changed
    LimitedRows limited = LimitedRows::None;
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

/// The definitions that a batch has run before a run of it. `batch`: number of its first run.
/// @throws data::DataError.
std::vector<EarlierDefinition> definitionsOfBatch(data::RunJournal& journal, qint64 batch,
                                                  qint64 run);

/// The runs of a journal for the function above, but for `except` (one that is being resumed).
/// @throws data::DataError.
std::vector<EarlierRun> earlierRuns(data::RunJournal& journal, qint64 except = 0);

/// "Asiakashinnat ja kampanjat on jo muutettu ajossa 3 ...", without "Huomaa: ".
QString earlierChangeText(const EarlierChange& rows);

}  // namespace vatchange
