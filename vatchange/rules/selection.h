#pragma once

#include <QList>
#include <QString>

#include "vatchange/rules/change_definition.h"

namespace vatchange {

/// The group numbers of a comma-separated list. An item counts when it is digits only and fits 64
/// bits (no group column holds more); leading zeros go, anything else is passed over.
QList<qint64> parseIgnoreList(const QString& text);

/// The condition on TUOTE that selects the products of a change: range and ignore terms of the
/// group kinds that are on, then the class term. Holds no text of the user, only whole numbers.
QString selectionCondition(const ChangeDefinition& definition);

/// The range of product groups as an addition to the conditions of the TRYHMA updates; applies
/// whether or not the restriction of products by group is on.
QString groupRangeCondition(const ChangeDefinition& definition);

}  // namespace vatchange
