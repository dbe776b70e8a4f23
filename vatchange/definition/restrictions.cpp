#include "vatchange/definition/restrictions.h"

#include <algorithm>
#include <array>

#include "vatchange/definition/ignore_list.h"

namespace vatchange {

namespace {

std::array<const GroupRestriction*, 3> kinds(const ChangeDefinition& definition) {
    return {&definition.subGroup, &definition.productGroup, &definition.mainGroup};
}

bool disjoint(const GroupRestriction& one, const GroupRestriction& other) {
    const auto [first, last] = groupRange(one);
    const auto [otherFirst, otherLast] = groupRange(other);
    if (!one.on || !other.on || (first == 0 && last == 0) || (otherFirst == 0 && otherLast == 0))
        return false;
    return last < otherFirst || otherLast < first;
}

}  // namespace

std::pair<qint64, qint64> groupRange(const GroupRestriction& restriction) {
    return {restriction.first != 0 ? restriction.first : restriction.last,
            restriction.last != 0 ? restriction.last : restriction.first};
}

bool isInverted(const GroupRestriction& restriction) {
    return restriction.last != 0 && restriction.first > restriction.last;
}

bool sameGroups(const ChangeDefinition& one, const ChangeDefinition& other) {
    return one.subGroup == other.subGroup && one.productGroup == other.productGroup &&
           one.mainGroup == other.mainGroup;
}

bool disjointGroups(const ChangeDefinition& one, const ChangeDefinition& other) {
    return disjoint(one.subGroup, other.subGroup) ||
           disjoint(one.productGroup, other.productGroup) ||
           disjoint(one.mainGroup, other.mainGroup);
}

bool isRestricted(const ChangeDefinition& definition) {
    const auto all = kinds(definition);
    return std::any_of(all.begin(), all.end(), [](const GroupRestriction* restriction) {
        return restriction->on && (restriction->first != 0 || restriction->last != 0 ||
                                   !parseIgnoreList(restriction->ignored).numbers.isEmpty());
    });
}

}  // namespace vatchange
