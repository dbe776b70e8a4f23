#include "vatchange/rules/price_rules.h"

#include <gtest/gtest.h>

namespace {

using vatchange::ChangeDefinition;
using vatchange::PriceRules;
using vatchange::ProductPrices;

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
}

TEST(PriceRules, WithoutALimitNegativePricesStay) {
    ChangeDefinition definition;
    definition.levels[0] = {1.1, QStringLiteral("hinta"), false};
    const PriceRules rules(definition);
    EXPECT_EQ(rules.levelPrice(1, -5.0), -5.0);
    EXPECT_EQ(rules.levelPrice(1, 0.0), 0.0);
    EXPECT_EQ(rules.dependentPrice(-5.0), -5.5);  // the limit is no matter of dependent prices
}

TEST(PriceRules, EveryNewPriceComesFromTheOldOnes) {
    ChangeDefinition definition;
    definition.levels[0] = {1.1, QStringLiteral("kaksoishinta"), false};
    definition.levels[1] = {1.2, QStringLiteral(" hinta "), false};  // blanks do not count
    definition.levels[2] = {1.3, QStringLiteral("0"), false};
    definition.levels[3] = {1.4, QStringLiteral("hinta10"), false};
    definition.levels[8] = {1.0, QStringLiteral("hinta3"), false};
    definition.purchaseCoefficient = 1.25;
    definition.lastPurchaseCoefficient = 0.5;
    ProductPrices old;
    old.levels = {10.0, 20.0, 30.333, 40.0, 0.0, 0.0, 0.0, 0.0, 90.0};
    old.averagePurchase = 4.0;
    old.portion = 0.3;
    old.lastPurchase = 5.0;

    const PriceRules rules(definition);
    const ProductPrices converted = rules.convert(old);

    EXPECT_EQ(converted.levels[0], 22.0);    // 1.1 x 20
    EXPECT_EQ(converted.levels[1], 12.0);    // 1.2 x 10, not of the new 22
    EXPECT_EQ(converted.levels[2], 30.333);  // no source
    EXPECT_EQ(converted.levels[3], 40.0);    // no such column
    EXPECT_EQ(converted.levels[8], 30.333);  // copied unrounded
    EXPECT_EQ(converted.averagePurchase, 5.0);
    EXPECT_EQ(converted.portion, 0.375);  // 1.25 x 0.3, unrounded
    EXPECT_EQ(converted.lastPurchase, 2.5);
}

TEST(PriceRules, DependentPricesRoundOnlyWhenTheCoefficientIsNotOne) {
    ChangeDefinition definition;
    definition.purchaseCoefficient = 1.5;
    EXPECT_EQ(PriceRules(definition).dependentPrice(1.2345), 1.2345);
    definition.levels[0].coefficient = k24To25_5;  // counts without a source, too
    EXPECT_EQ(PriceRules(definition).dependentPrice(12.4), 12.55);
    definition.roundingStep = vatchange::RoundingStep::Five;
    definition.roundingRule = vatchange::RoundingRule::Up;
    EXPECT_EQ(PriceRules(definition).dependentPrice(12.4), 12.55);   // 251.0000...3 is on the step
    EXPECT_EQ(PriceRules(definition).dependentPrice(99.9), 101.15);  // 2022.17 -> 2023 / 20
    EXPECT_EQ(PriceRules(definition).dependentPurchasePrice(0.333), 1.5 * 0.333);
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
