#pragma once

#include "tests/faults/full_company.h"

namespace test {

/// Fields that no run touches; the editors increment them.
inline constexpr char kProductCounter[] = "Kestotilattava";
inline constexpr char kOrderCounter[] = "Asiakas";

/// Doubles prices towards class 6 and halves them back: exact in doubles.
inline vatchange::ChangeDefinition doubling(int from, int to) {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = from;
    definition.targetClass = to;
    definition.levels[0] = {to == 6 ? 2.0 : 0.5, QStringLiteral("hinta"), false};
    definition.productLog = definition.salesOrders = true;
    definition.writeShelfLabels = false;
    definition.leaveWebShop = true;
    return definition;
}

}  // namespace test
