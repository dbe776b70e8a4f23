#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

/// The steps that a run is going to make, with their estimated times, from the numbers of rows and
/// measured times per row. To be called once the row lists exist.
std::vector<PlannedStep> plannedSteps(RunContext& run);

}  // namespace vatchange
