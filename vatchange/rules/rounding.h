#pragma once

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// Rounds a price by the definition's step and rule. "Normal" goes to the nearest step, halves to
/// even, except that step 5 is cash rounding; "up" and "down" take a value within 0.000999999 steps
/// of a step as lying on it.
double roundPrice(double value, RoundingStep step, RoundingRule rule);

/// Decimals of prices under a rounding step: 3, 2, 2, 1, 4; 2 for any other value.
int priceDecimals(RoundingStep step);

/// Half away from zero to `decimals` places, as unit prices of sales order rows are rounded:
/// truncated(value / unit +- 0.5) x unit with unit = 10^-decimals as a double.
double roundHalfAway(double value, int decimals);

/// Decimal rounding in banker's mode, as order totals are rounded: with decimals above 0 the
/// integer part is split off, the fraction is multiplied by 10^decimals, rounded with ties to even,
/// divided back, and the integer part added again.
double roundBankers(double value, int decimals);

}  // namespace vatchange
