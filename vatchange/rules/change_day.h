#pragma once

#include <QDate>
#include <QDateTime>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// What depends on the day of the change. A definition that names none has the dates of the change
// of September 2024.

/// The day from which the new rate holds.
QDate changeDay(const ChangeDefinition& definition);

/// Before this moment a run asks or is refused: 15:00 on the day before the change, when shops may
/// begin to prepare it.
QDateTime earliestRun(const ChangeDefinition& definition);

/// Campaigns and quantity discounts that end earlier are not converted. Without a day of its own a
/// definition converts quantity discounts that end two months before the change or later.
QDate campaignsEndingFrom(const ChangeDefinition& definition);
QDate quantityDiscountsEndingFrom(const ChangeDefinition& definition);

}  // namespace vatchange
