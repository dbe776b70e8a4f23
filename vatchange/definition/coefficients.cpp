#include "vatchange/definition/coefficients.h"

#include <cmath>

namespace vatchange {

namespace {

constexpr double kFrom24To255 = 1.0120967741935485;
constexpr double kFrom13To14 = 1.008849557522124;
constexpr double kFrom9To10 = 1.0091743119266054;
constexpr double kFrom14To255 = 1.1008771929824561;

struct CarryOver {
    double saved;
    double tolerance;
    double now;
};

constexpr CarryOver kCarryOvers[] = {
    {1.008130081300813, 1e-6, kFrom24To255},
    {kFrom13To14, 1e-6, kFrom14To255},
    {1.0092592592592593, 1e-7, 0.0},
};

}  // namespace

bool acceptableLevelCoefficient(double coefficient) {
    return coefficient >= kLowestLevelCoefficient && coefficient <= kHighestLevelCoefficient;
}

std::optional<double> shortcutCoefficient(int digit) {
    switch (digit) {
        case 1:
            return kFrom24To255;
        case 2:
            return kFrom13To14;
        case 3:
            return kFrom9To10;
        default:
            return std::nullopt;
    }
}

double keepVat0Coefficient(double sourcePercent, double targetPercent) {
    return (100.0 + targetPercent) / (100.0 + sourcePercent);
}

std::optional<double> carriedOverCoefficient(double coefficient) {
    for (const CarryOver& rule : kCarryOvers) {
        if (std::fabs(coefficient - rule.saved) <= rule.tolerance)
            return rule.now;
    }
    return std::nullopt;
}

}  // namespace vatchange
