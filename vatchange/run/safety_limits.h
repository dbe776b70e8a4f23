#pragma once

#include "vatchange/journal/limited_products.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

/// Refuses a new run whose definition selects more products than it allows. A resumed run finds
/// only what is left and was judged when it began. Returns false if the run must not start; the
/// reason has been shown.
bool productCountAllowsRun(RunContext& run, const RunOptions& options);

/// Before the first change: finds the products that change too much, logs and counts them and
/// stores them in the journal; a resumed run takes those of its beginning. Sets
/// RunContext::limited. One query over the selected products; does nothing without a limit.
/// @throws data::DataError.
void judgeProducts(RunContext& run);

/// Under a product's lock: passes it over if it changes too much now. Returns whether it does.
bool passesOver(RunContext& run, const QString& number, const ProductPrices& before,
                const ProductPrices& after);

}  // namespace vatchange
