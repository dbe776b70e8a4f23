#include "vatchange/rules/rounding.h"

#include <array>
#include <cmath>

namespace vatchange {

namespace {

/// Tolerance, in steps, within which a value counts as being on a step.
constexpr double kStepTolerance = 0.000999999;

/// Steps per euro, by RoundingStep.
constexpr std::array<double, 5> kStepsPerUnit = {1000.0, 100.0, 20.0, 10.0, 10000.0};

/// Turns -0.0 into 0.0, as rounding through an integer would.
double withoutNegativeZero(double value) {
    return value + 0.0;
}

double powerOfTen(int exponent) {
    static constexpr std::array<double, 5> kPowers = {1.0, 10.0, 100.0, 1000.0, 10000.0};
    const auto index = static_cast<size_t>(exponent);
    return exponent >= 0 && index < kPowers.size() ? kPowers[index] : std::pow(10.0, exponent);
}

double unitOfDecimals(int decimals) {
    static constexpr std::array<double, 5> kUnits = {1.0, 0.1, 0.01, 0.001, 0.0001};
    const auto index = static_cast<size_t>(decimals);
    return decimals >= 0 && index < kUnits.size() ? kUnits[index] : std::pow(10.0, -decimals);
}

/// Cash rounding to five cents: rounds to whole cents, then by the last digit.
double roundCash(double value) {
    const double cents = std::nearbyint(std::fabs(value) * 100.0);
    const double digit = std::fmod(cents, 10.0);
    const double tens = cents - digit;
    double rounded = tens + 10.0;
    if (digit <= 2.0)
        rounded = tens;
    else if (digit <= 7.0)
        rounded = tens + 5.0;
    return std::copysign(rounded / 100.0, value);
}

}  // namespace

double roundPrice(double value, RoundingStep step, RoundingRule rule) {
    const double stepsPerUnit = kStepsPerUnit[static_cast<size_t>(step)];
    const double steps = value * stepsPerUnit;
    double rounded = 0.0;
    switch (rule) {
        case RoundingRule::Up:
            rounded = std::floor(steps + 1.0 - kStepTolerance) / stepsPerUnit;
            break;
        case RoundingRule::Down:
            rounded = std::floor(steps + kStepTolerance) / stepsPerUnit;
            break;
        case RoundingRule::Normal:
            rounded = step == RoundingStep::Five ? roundCash(value)
                                                 : std::nearbyint(steps) / stepsPerUnit;
            break;
    }
    return withoutNegativeZero(rounded);
}

int priceDecimals(RoundingStep step) {
    switch (step) {
        case RoundingStep::Tenth:
            return 3;
        case RoundingStep::Ten:
            return 1;
        case RoundingStep::Hundredth:
            return 4;
        case RoundingStep::One:
        case RoundingStep::Five:
            break;
    }
    return 2;
}

double roundHalfAway(double value, int decimals) {
    const double unit = unitOfDecimals(decimals);
    const double steps = value / unit;
    const double whole = std::trunc(value < 0.0 ? steps - 0.5 : steps + 0.5);
    return withoutNegativeZero(whole * unit);
}

double roundBankers(double value, int decimals) {
    const double scale = powerOfTen(decimals);
    double integerPart = 0.0;
    double fraction = value;
    if (decimals > 0)
        fraction = std::modf(value, &integerPart);
    return withoutNegativeZero(std::nearbyint(fraction * scale) / scale + integerPart);
}

}  // namespace vatchange
