#include "vatchange/rules/price_rules.h"

#include <gtest/gtest.h>

namespace {

using vatchange::ChangeDefinition;
using vatchange::PriceRules;

constexpr double k24To25_5 = 1.0120967741935485;

TEST(PriceRules, LevelPriceByCoefficientAndLimit) {
    ChangeDefinition definition;
    definition.levels[0] = {k24To25_5, QStringLiteral("hinta"), false};
    definition.levels[1] = {1.0, QStringLiteral("kaksoishinta"), false};
    definition.levels[2] = {1.5, QStringLiteral("hinta3"), false};
    definition.priceChangeLimit = 10.0;
    const PriceRules rules(definition);

    EXPECT_EQ(rules.levelPrice(1, 12.4), 12.55);       // 12.4 x 1.0120967741935485 = 12.55
    EXPECT_EQ(rules.levelPrice(1, 99.9), 101.11);      // 101.10846...
    EXPECT_EQ(rules.levelPrice(2, 12.3456), 12.3456);  // coefficient exactly 1: unrounded
    EXPECT_EQ(rules.levelPrice(3, 9.999), 9.999);      // below the limit: as it is, unrounded
    EXPECT_EQ(rules.levelPrice(3, 10.0), 15.0);        // the limit itself counts
    EXPECT_EQ(rules.levelPrice(3, -20.0), -20.0);
    EXPECT_EQ(rules.dependentPrice(5.0), 5.06);  // 5.0604...; no limit, but rounded
}

TEST(PriceRules, ProductCodesThatTheWebShopRefuses) {
    EXPECT_TRUE(vatchange::isForbiddenProductCode(QString()));
    const QString forbidden = QStringLiteral(" *?/[]()%$#\"&^'");
    ASSERT_EQ(forbidden.size(), 15);
    for (const QChar character : forbidden)
        EXPECT_TRUE(vatchange::isForbiddenProductCode(QStringLiteral("A1") + character))
            << QString(character).toStdString();
    EXPECT_FALSE(vatchange::isForbiddenProductCode(QStringLiteral("AB-12_3.4Ö+\\{}@!")));
}

}  // namespace
