#pragma once

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// The range that a restriction selects, both ends included; both 0 if it has none. A single bound
/// selects that group, not a half-open range.
std::pair<qint64, qint64> groupRange(const GroupRestriction& restriction);

/// Whether both bounds are given and the first is above the last: no group is between them.
bool isInverted(const GroupRestriction& restriction);

bool sameGroups(const ChangeDefinition& one, const ChangeDefinition& other);

/// Whether no product can be in the ranges of both definitions.
bool disjointGroups(const ChangeDefinition& one, const ChangeDefinition& other);

/// Whether any restriction is on and leaves groups out.
bool isRestricted(const ChangeDefinition& definition);

}  // namespace vatchange
