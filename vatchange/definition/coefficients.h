#pragma once

#include <optional>

namespace vatchange {

inline constexpr double kLowestLevelCoefficient = 0.9;
inline constexpr double kHighestLevelCoefficient = 1.25;

/// Whether a price level may have this coefficient (both bounds included).
bool acceptableLevelCoefficient(double coefficient);

/// The coefficient that Alt and a digit sets: 1.255/1.24, 1.14/1.13, 1.10/1.09; nothing for other
/// digits.
std::optional<double> shortcutCoefficient(int digit);

/// The coefficient that keeps the VAT-free price when the rate (percent) changes.
double keepVat0Coefficient(double sourcePercent, double targetPercent);

/// Definitions saved at the previous VAT change carry its coefficients: what such a one becomes
/// now; nothing for any other coefficient.
std::optional<double> carriedOverCoefficient(double coefficient);

}  // namespace vatchange
