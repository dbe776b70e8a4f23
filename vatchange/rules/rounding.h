#pragma once

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// Rounds a price by the definition's step and rule. "Normal" rounds to the nearest step, ties to
/// even; step 5 uses cash rounding. "Up" and "down" treat a value within 0.000999999 steps of a
/// step as that step.
double roundPrice(double value, RoundingStep step, RoundingRule rule);

/// Decimals of prices under a rounding step: 3, 2, 2, 1, 4; 2 for any other value.
int priceDecimals(RoundingStep step);

/// Rounds half away from zero to `decimals` places: truncate(value / unit +- 0.5) x unit, where
/// unit is 10^-decimals as a double. For unit prices of sales order rows.
double roundHalfAway(double value, int decimals);

/// Banker's rounding for order totals. With decimals > 0 it splits off the integer part, multiplies
/// the fraction by 10^decimals, rounds ties to even, divides and adds the integer part.
double roundBankers(double value, int decimals);

}  // namespace vatchange
