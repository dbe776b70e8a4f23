#include "vatchange/rules/price_rules.h"

#include <algorithm>

#include "vatchange/rules/rounding.h"

namespace vatchange {

double vatFactor(double ratePercent) {
    return 1.0 + ratePercent / 100.0;
}

int sourceLevel(const QString& source) {
    const auto found = std::find(kPriceColumns.begin() + 1, kPriceColumns.end(), source.trimmed());
    return found == kPriceColumns.end() ? 0 : static_cast<int>(found - kPriceColumns.begin());
}

PriceRules::PriceRules(const ChangeDefinition& definition)
    : m_purchaseCoefficient(definition.purchaseCoefficient),
      m_lastPurchaseCoefficient(definition.lastPurchaseCoefficient),
      m_limit(definition.priceChangeLimit),
      m_step(definition.roundingStep),
      m_rule(definition.roundingRule) {
    for (size_t i = 0; i < definition.levels.size(); ++i) {
        m_sources[i] = sourceLevel(definition.levels[i].source);
        m_coefficients[i] = definition.levels[i].coefficient;
    }
}

double PriceRules::round(double value) const {
    return roundPrice(value, m_step, m_rule);
}

double PriceRules::levelPrice(int level, double sourcePrice) const {
    if (!(sourcePrice >= m_limit))
        return sourcePrice;
    const double coefficient = m_coefficients[static_cast<size_t>(level - 1)];
    const double price = coefficient * sourcePrice;
    return coefficient == 1.0 ? price : round(price);
}

ProductPrices PriceRules::convert(const ProductPrices& old) const {
    ProductPrices converted = old;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const auto index = static_cast<size_t>(level - 1);
        if (m_sources[index] > 0) {
            const auto source = static_cast<size_t>(m_sources[index] - 1);
            converted.levels[index] = levelPrice(level, old.levels[source]);
        }
    }
    if (changesPurchase()) {
        converted.averagePurchase = m_purchaseCoefficient * old.averagePurchase;
        converted.portion = m_purchaseCoefficient * old.portion;
    }
    if (changesLastPurchase())
        converted.lastPurchase = m_lastPurchaseCoefficient * old.lastPurchase;
    return converted;
}

double PriceRules::dependentPrice(double price) const {
    const double coefficient = m_coefficients.front();
    const double changed = coefficient * price;
    return coefficient == 1.0 ? changed : round(changed);
}

bool isForbiddenProductCode(const QString& number) {
    static const QString kForbidden = QStringLiteral(" *?/[]()%$#\"&^'");
    return number.isEmpty() || std::any_of(number.begin(), number.end(), [](QChar character) {
               return kForbidden.contains(character);
           });
}

}  // namespace vatchange
