#include "vatchange/changes/level_order.h"

#include <cmath>

namespace vatchange {

namespace {

/// -1, 0 or 1; amounts closer than a thousandth of a cent are equal.
int order(double one, double other) {
    constexpr double kEqual = 1e-5;
    return std::fabs(one - other) < kEqual ? 0 : one < other ? -1 : 1;
}

double purchasePrice(const ProductPrices& prices) {
    return prices.averagePurchase > 0 ? prices.averagePurchase : prices.lastPurchase;
}

}  // namespace

std::vector<LevelOrderChange> changedLevelOrder(const ProductPrices& before,
                                                const ProductPrices& after) {
    std::vector<LevelOrderChange> changes;
    const double costBefore = purchasePrice(before);
    const double costAfter = purchasePrice(after);
    for (size_t i = 0; i < before.levels.size(); ++i) {
        const int level = static_cast<int>(i) + 1;
        const double from = before.levels[i];
        const double to = after.levels[i];
        if (!(from > 0) || !(to > 0))
            continue;
        for (size_t other = 0; other < i; ++other) {
            if (!(before.levels[other] > 0) || !(after.levels[other] > 0))
                continue;
            const int was = order(from, before.levels[other]);
            const int is = order(to, after.levels[other]);
            const bool aboveRetail = other == 0 && was == 0 && is > 0;
            if (was * is < 0 || aboveRetail)
                changes.push_back({level, (is > 0 ? QStringLiteral("taso %1 kalliimpi kuin taso %2")
                                                  : QStringLiteral("taso %1 halvempi kuin taso %2"))
                                              .arg(level)
                                              .arg(other + 1)});
        }
        if (costBefore > 0 && costAfter > 0 && order(from, costBefore) >= 0 &&
            order(to, costAfter) < 0)
            changes.push_back({level, QStringLiteral("taso %1 alle ostohinnan").arg(level)});
    }
    return changes;
}

}  // namespace vatchange
