#include "vatchange/changes/expected_change.h"

#include <array>
#include <cmath>

#include "vatchange/rules/price_rules.h"

namespace vatchange {

namespace {

constexpr double kCent = 0.01;
constexpr double kRelative = 1e-6;  // single precision

double stepSize(RoundingStep step) {
    static constexpr std::array kSteps{0.001, 0.01, 0.05, 0.1, 0.0001};
    const auto index = static_cast<size_t>(step);
    return index < kSteps.size() ? kSteps[index] : kCent;
}

bool isField(const ChangedField& field, const char* table,
             std::initializer_list<const char*> names) {
    if (field.table.compare(QLatin1String(table), Qt::CaseInsensitive) != 0)
        return false;
    return std::any_of(names.begin(), names.end(), [&field](const char* name) {
        return field.field.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
}

/// The ratio of the two classes' VAT factors.
std::optional<double> factorRatio(const ChangeDefinition& definition, const VatRates& rates) {
    const auto source = rates.find(definition.sourceClass);
    const auto target = rates.find(definition.targetClass);
    if (source == rates.end() || target == rates.end())
        return std::nullopt;
    return vatFactor(target->second) / vatFactor(source->second);
}

}  // namespace

ExpectedChange::ExpectedChange(const ChangeDefinition& definition, const VatRates& rates,
                               const ChangedField& field) {
    const double step = stepSize(definition.roundingStep);
    m_tolerance = kCent;
    if (field.level > 0) {
        const PriceLevelChange& level = definition.levels[static_cast<size_t>(field.level - 1)];
        if (sourceLevel(level.source) == 0)
            return;
        m_coefficient = level.coefficient;
        m_tolerance = step;
        if (field.table.compare(QStringLiteral("TUOTE"), Qt::CaseInsensitive) == 0)
            m_limit = definition.priceChangeLimit;
        else if (level.keepVat0)
            m_coefficient = factorRatio(definition, rates);
    } else if (isField(field, "ASALE", {"Hinta"}) || isField(field, "KAMPPANJA", {"Myyntihinta"}) ||
               isField(field, "VAKIOLASKUTUS", {"ahinta"}) ||
               isField(field, "MAARAALE", {"Arvo"})) {
        m_coefficient = definition.levels.front().coefficient;
        m_tolerance = step;
    } else if (isField(field, "TUOTE", {"KESKIHINTA", "ANNOSHINTA"}) ||
               isField(field, "ASALE", {"OstoHinta"}) ||
               isField(field, "KAMPPANJA", {"Ostohinta"}) ||
               isField(field, "VAKIOLASKUTUS", {"ostohinta"}) ||
               isField(field, "MAARAALE", {"Ostohinta"})) {
        m_coefficient = definition.purchaseCoefficient;
    } else if (isField(field, "TUOTE", {"VIIMOSTOHINTA"})) {
        m_coefficient = definition.lastPurchaseCoefficient;
    } else if (isField(field, "MTRIVI", {"Ahinta"})) {
        m_coefficient = definition.salesOrderFromVat0 ? factorRatio(definition, rates)
                                                      : definition.salesOrderCoefficient;
    } else if (isField(field, "WINOTRI", {"OstoHinta"})) {
        m_coefficient = definition.purchaseOrderFromVat0 ? factorRatio(definition, rates)
                                                         : definition.purchaseOrderCoefficient;
    }
}

bool ExpectedChange::isFar(double before, double after) const {
    if (!m_coefficient)
        return false;
    const double expected = before >= m_limit ? *m_coefficient * before : before;
    return !(std::fabs(after - expected) <= m_tolerance + kRelative * std::fabs(expected));
}

}  // namespace vatchange
