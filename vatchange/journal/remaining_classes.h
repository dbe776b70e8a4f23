#pragma once

#include <optional>

#include "vatchange/definition/change_definition.h"
#include "vatchange/journal/finding_list.h"
#include "vatchange/journal/journal_check.h"
#include "vatchange/journal/run_outcome.h"

namespace vatchange {

/// What is known of a run when its remaining source classes are counted.
struct RunKnowledge {
    const ChangeDefinition& definition;
    const std::optional<RunOutcome>& outcome;  ///< nothing: the run did not come to its end
    const RecordSets& converted;
    const RecordSets& undone;
    const std::set<QString>& overLimit;  ///< numbers of products
};

/// Reads all products, product groups and rows of open orders, in storage order, and counts by
/// table and reason what still carries the source class.
void countRemaining(data::Database& database, const RunKnowledge& run, Verification& verification,
                    FindingList& findings);

}  // namespace vatchange
