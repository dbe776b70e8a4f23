#pragma once

#include <array>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// VAT factor of a rate in percent: 1 + rate / 100.
double vatFactor(double ratePercent);

/// Price level (1..9) whose column a source names; 0 for any other text: the level stays unchanged.
int sourceLevel(const QString& source);

/// The amounts of a product that a change may modify. Level n is at index n - 1.
struct ProductPrices {
    std::array<double, kPriceLevels> levels{};
    double averagePurchase = 0.0;  ///< KESKIHINTA
    double portion = 0.0;          ///< ANNOSHINTA
    double lastPurchase = 0.0;     ///< VIIMOSTOHINTA
};

/// Price arithmetic of a change definition.
class PriceRules {
  public:
    explicit PriceRules(const ChangeDefinition& definition);

    /// Source level (1..9) of each level; 0 for an unchanged level.
    const std::array<int, kPriceLevels>& sources() const { return m_sources; }
    bool changesPurchase() const { return m_purchaseCoefficient != 1.0; }
    bool changesLastPurchase() const { return m_lastPurchaseCoefficient != 1.0; }

    /// New price of a level from its source price. At or above the price change limit: coefficient
    /// x price, rounded unless the coefficient is exactly 1. Below the limit: the source price.
    double levelPrice(int level, double sourcePrice) const;

    /// Amounts of a product after the change; unchanged ones are copied. New prices depend on old
    /// ones only, even if levels use each other's columns.
    ProductPrices convert(const ProductPrices& old) const;

    /// New sales price of a dependent table: level 1's coefficient x price, rounded unless the
    /// coefficient is exactly 1. The price change limit does not apply.
    double dependentPrice(double price) const;
    /// New purchase price of a dependent table; never rounded.
    double dependentPurchasePrice(double price) const { return m_purchaseCoefficient * price; }

  private:
    double round(double value) const;

    std::array<int, kPriceLevels> m_sources{};
    std::array<double, kPriceLevels> m_coefficients{};
    double m_purchaseCoefficient;
    double m_lastPurchaseCoefficient;
    double m_limit;
    RoundingStep m_step;
    RoundingRule m_rule;
};

/// True for product numbers that web shop URLs do not allow: empty, or with a forbidden character.
bool isForbiddenProductCode(const QString& number);

}  // namespace vatchange
