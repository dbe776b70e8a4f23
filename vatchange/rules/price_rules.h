#pragma once

#include <array>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// VAT factor of a rate in percent: 1 + rate / 100.
double vatFactor(double ratePercent);

/// Number (1..9) of the price level whose column a source names; 0 when it names none, which means
/// that the level is not changed.
int sourceLevel(const QString& source);

/// The amounts of one product that a change touches. Level n stands at index n - 1.
struct ProductPrices {
    std::array<double, kPriceLevels> levels{};
    double averagePurchase = 0.0;  ///< KESKIHINTA
    double portion = 0.0;          ///< ANNOSHINTA
    double lastPurchase = 0.0;     ///< VIIMOSTOHINTA
};

/// The price arithmetic of one change definition, resolved once for all rows.
class PriceRules {
  public:
    explicit PriceRules(const ChangeDefinition& definition);

    /// Source level (1..9) of each level, 0 for a level that is not changed.
    const std::array<int, kPriceLevels>& sources() const { return m_sources; }
    bool changesPurchase() const { return m_purchaseCoefficient != 1.0; }
    bool changesLastPurchase() const { return m_lastPurchaseCoefficient != 1.0; }

    /// New price of a level from its source's price: from the price change limit up, coefficient x
    /// price, rounded unless the coefficient is exactly 1; below the limit the price as it is.
    double levelPrice(int level, double sourcePrice) const;

    /// All amounts of a product after the change; what does not change is copied. Every new price
    /// comes from the old ones, also when levels take each other's columns.
    ProductPrices convert(const ProductPrices& old) const;

    /// A sales price of a dependent table: coefficient of level 1 x price, rounded unless that
    /// coefficient is exactly 1. The limit does not apply.
    double dependentPrice(double price) const;
    /// A purchase price of a dependent table, never rounded.
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

/// True when the web shop cannot use a product number: it is empty or holds a character that the
/// web shop's addresses do not allow.
bool isForbiddenProductCode(const QString& number);

}  // namespace vatchange
