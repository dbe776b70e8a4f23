#pragma once

#include <QString>
#include <vector>

#include "vatchange/rules/price_rules.h"

namespace vatchange {

/// A price level that ends in an order with another price that it did not have before.
struct LevelOrderChange {
    int level = 0;
    QString reason;  ///< "taso 3 kalliimpi kuin taso 1"
    bool operator==(const LevelOrderChange&) const = default;
};

/// Compares each price level with those below its number and with the purchase price (the average
/// one, else the last one). Prices of 0 or less are no prices. A level that was equal to the
/// retail price (level 1) and is above it now counts; between other levels only a reversed order
/// does.
std::vector<LevelOrderChange> changedLevelOrder(const ProductPrices& before,
                                                const ProductPrices& after);

}  // namespace vatchange
