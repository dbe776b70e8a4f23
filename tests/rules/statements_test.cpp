#include "vatchange/rules/statements.h"

#include <gtest/gtest.h>

#include "vatchange/rules/price_rules.h"

namespace {

using vatchange::ChangeDefinition;
using vatchange::RoundingRule;
using vatchange::RoundingStep;

TEST(Statements, FactorReadsBackAndHasAPoint) {
    using vatchange::factorText;
    using vatchange::vatFactor;
    EXPECT_EQ(factorText(vatFactor(25.5)).toStdString(), "1.255");
    EXPECT_EQ(factorText(vatFactor(24.0)).toStdString(), "1.24");
    EXPECT_EQ(factorText(vatFactor(14.0)).toStdString(), "1.1400000000000001");
    EXPECT_EQ(factorText(vatFactor(0.0)).toStdString(), "1.0");
    EXPECT_EQ(factorText(vatFactor(-100.0)).toStdString(), "0.0");
    const double single = vatFactor(static_cast<double>(13.7F));
    EXPECT_EQ(factorText(single).toDouble(), single);
    EXPECT_EQ(factorText(1e22).toStdString(), "10000000000000000000000.0");  // no exponent
}

TEST(Statements, StorePriceAssignmentsByStepAndRule) {
    const std::tuple<RoundingStep, RoundingRule, const char*> cases[] = {
        {RoundingStep::Tenth, RoundingRule::Up, "round( ( hinta2alv0 * 1.255),3)"},
        {RoundingStep::One, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255),2)"},
        {RoundingStep::Five, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255)*20)/20)"},
        {RoundingStep::Five, RoundingRule::Up, "FLOOR((( hinta2alv0 * 1.255)* 20) + 0.9999) / 20"},
        {RoundingStep::Ten, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255)*10)/10)"},
        {RoundingStep::Ten, RoundingRule::Down, "FLOOR((( hinta2alv0 * 1.255)* 10) ) / 10"},
        {RoundingStep::Hundredth, RoundingRule::Up, "round( ( hinta2alv0 * 1.255),4)"},
    };
    for (const auto& [step, rule, rounded] : cases) {
        ChangeDefinition definition;
        definition.levels[0] = {1.0, QStringLiteral("hinta"), false};
        definition.levels[1] = {1.0, QStringLiteral("hinta"), true};
        definition.levels[2] = {1.0, QStringLiteral("0"), true};
        definition.roundingStep = step;
        definition.roundingRule = rule;
        const QString assignments =
            vatchange::storePriceAssignments(definition, vatchange::vatFactor(25.5));
        EXPECT_EQ(assignments.toStdString(),
                  std::string(" hinta1alv0 = hinta1/1.255, hinta2 = ") + rounded);
    }
    EXPECT_TRUE(vatchange::storePriceAssignments(ChangeDefinition(), 1.255).isEmpty());
    EXPECT_EQ(vatchange::storePriceUpdate(QStringLiteral(" hinta1alv0 = hinta1/1.0")).toStdString(),
              "update myymalahinnat set  hinta1alv0 = hinta1/1.0, muutettu =now() where tuote=:t");
}

}  // namespace
