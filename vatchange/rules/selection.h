#pragma once

#include <QString>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// SQL condition on TUOTE that selects the products to change: range and ignore terms of each
/// enabled group kind, then the VAT class term. Contains only integers, no user text.
QString selectionCondition(const ChangeDefinition& definition);

/// The same with the target class beside the source class: also what a run has converted.
QString selectionWithConverted(const ChangeDefinition& definition);

/// Product group range, appended to the conditions of the TRYHMA updates; applies even if the
/// product group restriction is off.
QString groupRangeCondition(const ChangeDefinition& definition);

}  // namespace vatchange
