#include "vatchange/form/ready_definitions.h"

#include <QLocale>

#include "vatchange/definition/coefficients.h"
#include "vatchange/rules/change_day.h"

namespace vatchange {

const std::array<RateChange, 3> kRateChanges = {
    {{24, 25.5, QDate(2024, 9, 1)}, {10, 14, QDate(2025, 1, 1)}, {14, 13.5, QDate(2026, 1, 1)}}};

QString percentText(double percent) {
    return QLocale().toString(percent, 'g', 4) + QStringLiteral(" %");
}

QString RateChange::caption() const {
    return QStringLiteral("%1 → %2 (%3), veroton hinta säilyy")
        .arg(percentText(source), percentText(target), from.toString(QStringLiteral("d.M.yyyy")));
}

ChangeDefinition readyDefinition(const RateChange& change, int sourceClass, int targetClass) {
    ChangeDefinition definition;
    definition.sourceClass = sourceClass;
    definition.targetClass = targetClass;
    for (std::size_t level = 0; level < definition.levels.size(); ++level)
        definition.levels[level] = {keepVat0Coefficient(change.source, change.target),
                                    kPriceColumns[level + 1], true};
    if (change.from != changeDay(definition))
        definition.changeDay = change.from;
    if (change.from != changeDay(definition))  // the day that holds without one
        definition.changeDay = change.from;
    definition.salesOrderFromVat0 = true;
    definition.purchaseOrderFromVat0 = true;
    return definition;
}

}  // namespace vatchange
