#pragma once

#include <QString>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// The condition on TUOTE that selects the products of a change: range and ignore terms of the
/// group kinds that are on, then the class term. Holds no text of the user, only whole numbers.
QString selectionCondition(const ChangeDefinition& definition);

/// The range of product groups as an addition to the conditions of the TRYHMA updates; applies
/// whether or not the restriction of products by group is on.
QString groupRangeCondition(const ChangeDefinition& definition);

}  // namespace vatchange
