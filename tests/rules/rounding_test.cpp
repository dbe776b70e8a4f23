#include "vatchange/rules/rounding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using vatchange::RoundingRule;
using vatchange::RoundingStep;

struct PriceCase {
    RoundingStep step;
    RoundingRule rule;
    double value;
    double expected;
    const char* derivation;
};

constexpr auto kTenth = RoundingStep::Tenth;
constexpr auto kOne = RoundingStep::One;
constexpr auto kFive = RoundingStep::Five;
constexpr auto kTen = RoundingStep::Ten;
constexpr auto kHundredth = RoundingStep::Hundredth;
constexpr auto kNormal = RoundingRule::Normal;
constexpr auto kUp = RoundingRule::Up;
constexpr auto kDown = RoundingRule::Down;

// t stands for the tolerance 0.000999999.
const std::vector<PriceCase> kPriceCases = {
    // nearest, exact halves (binary fractions, so that the product is exact)
    {kTenth, kNormal, 0.1875, 0.188, "187.5 -> 188 (even)"},
    {kOne, kNormal, 0.125, 0.12, "12.5 -> 12"},
    {kOne, kNormal, -0.125, -0.12, "-12.5 -> -12"},
    {kTen, kNormal, 0.75, 0.8, "7.5 -> 8"},
    {kHundredth, kNormal, 0.09375, 0.0938, "937.5 -> 938"},
    // the product decides, not the decimal digits
    {kOne, kNormal, 2.675, 2.68, "2.675 x 100 is 267.5 in doubles -> 268"},
    {kOne, kNormal, 1.005, 1.0, "1.005 x 100 is 100.49999999999999 -> 100"},
    {kOne, kNormal, -0.004, 0.0, "-0.4 -> 0, a plain zero"},
    // cash rounding: whole cents, then the last digit
    {kFive, kNormal, 12.02, 12.0, "digit 2 goes down"},
    {kFive, kNormal, 12.03, 12.05, "digit 3 goes to 5"},
    {kFive, kNormal, 12.07, 12.05, "digit 7 goes to 5"},
    {kFive, kNormal, 12.08, 12.1, "digit 8 goes up"},
    {kFive, kNormal, 1.98, 2.0, "198 -> 190 + 10"},
    {kFive, kNormal, 0.125, 0.1, "12.5 -> 12 cents, digit 2"},
    {kFive, kNormal, -0.03, -0.05, "3 cents -> 5, the sign put back"},
    {kFive, kNormal, -0.02, 0.0, "2 cents -> 0, a plain zero"},
    // up: floor(steps + 1 - t)
    {kOne, kUp, 10.010009, 10.01, "1001.0009 is within t of 1001"},
    {kOne, kUp, 10.01002, 10.02, "1001.002 is not"},
    {kOne, kUp, -10.019, -10.01, "-1001.9 -> -1001"},
    {kOne, kUp, -0.005, 0.0, "floor(-0.5 + 1 - t) = 0"},
    // down: floor(steps + t)
    {kOne, kDown, 10.019995, 10.02, "1001.9995 is within t of 1002"},
    {kOne, kDown, -10.011, -10.02, "-1001.1 -> -1002"},
};

TEST(Rounding, PricesByStepAndRule) {
    for (const PriceCase& c : kPriceCases) {
        const double rounded = vatchange::roundPrice(c.value, c.step, c.rule);
        EXPECT_EQ(rounded, c.expected) << c.value << ": " << c.derivation;
        EXPECT_FALSE(rounded == 0.0 && std::signbit(rounded)) << c.value << " gave a negative zero";
    }
}

TEST(Rounding, Decimals) {
    constexpr auto kAway = vatchange::roundHalfAway;
    constexpr auto kBankers = vatchange::roundBankers;
    using Round = double (*)(double value, int decimals);
    const std::tuple<Round, double, int, double, const char*> cases[] = {
        {kAway, 0.005, 2, 0.01, "0.5 + 0.5 -> 1"},
        {kAway, 7.125, 2, 7.13, "712.5 + 0.5 -> 713"},
        {kAway, -7.125, 2, -7.13, "-712.5 - 0.5 -> -713"},
        {kAway, 0.25, 1, 0.30000000000000004, "2.5 + 0.5 -> 3; 3 x 0.1 is not 0.3 in doubles"},
        {kAway, -0.001, 2, 0.0, "-0.1 - 0.5 -> 0"},
        {kBankers, 7.125, 2, 7.12, "0.125 -> 12.5 -> 12"},
        {kBankers, 7.375, 2, 7.38, "0.375 -> 37.5 -> 38"},
        {kBankers, -7.125, 2, -7.12, "-12.5 -> -12"},
        {kBankers, 1.005, 2, 1.0, "the fraction is 0.00499..., x 100 = 0.499... -> 0"},
        {kBankers, 1000000.03125, 4, 1000000.0312, "312.5 -> 312"},
        {kBankers, 2.5, 0, 2.0, "no split: 2.5 -> 2"},
    };
    for (const auto& [round, value, decimals, expected, derivation] : cases)
        EXPECT_EQ(round(value, decimals), expected) << value << ": " << derivation;
}

}  // namespace
