#include "vatchange/rules/price_limit.h"

#include <cmath>

namespace vatchange {

namespace {

// From 1.00 to 1.10 is 10 %, though the doubles differ by a little more.
constexpr double kTolerance = 1e-9;  // percents

}  // namespace

bool changesTooMuch(double before, double after, double mostPercent) {
    if (before == 0.0)
        return false;
    if (before > 0.0 && !(after > 0.0))
        return true;
    return !(std::abs((after - before) / before) * 100.0 <= mostPercent + kTolerance);
}

bool exceedsPercentLimit(const ChangeDefinition& definition, const ProductPrices& before,
                         const ProductPrices& after) {
    if (!definition.mostPercent)
        return false;
    for (size_t i = 0; i < before.levels.size(); ++i) {
        if (changesTooMuch(before.levels[i], after.levels[i], *definition.mostPercent))
            return true;
    }
    return false;
}

}  // namespace vatchange
