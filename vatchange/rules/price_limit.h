#pragma once

#include "vatchange/rules/price_rules.h"

namespace vatchange {

/// Whether a price changes by more than `mostPercent` percents of its old value, or from above 0 to
/// 0 or below. An old price of 0 is not judged.
bool changesTooMuch(double before, double after, double mostPercent);

/// Whether a price level of a product changes too much; false without the definition's limit.
/// Levels without a source do not change.
bool exceedsPercentLimit(const ChangeDefinition& definition, const ProductPrices& before,
                         const ProductPrices& after);

}  // namespace vatchange
