#pragma once

#include <optional>

namespace vatchange {

inline constexpr double kLowestLevelCoefficient = 0.9;
inline constexpr double kHighestLevelCoefficient = 1.25;

/// Whether the coefficient is in the range of price levels, bounds included.
bool acceptableLevelCoefficient(double coefficient);

/// The coefficient set by Alt and a digit: 1.255/1.24, 1.14/1.13, 1.10/1.09; nullopt for other
/// digits.
std::optional<double> shortcutCoefficient(int digit);

/// The coefficient that keeps the VAT-free price when the rate (percent) changes.
double keepVat0Coefficient(double sourcePercent, double targetPercent);

/// Returns the replacement for a coefficient of the previous VAT change, nullopt for any other.
std::optional<double> carriedOverCoefficient(double coefficient);

}  // namespace vatchange
