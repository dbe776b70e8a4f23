#include "vatchange/rules/row_matching.h"

#include <QStringView>
#include <algorithm>
#include <cmath>
#include <limits>

namespace vatchange {

namespace {

/// Largest difference between two rows' amounts, in tolerances: 0 if equal, infinite above 1.
double distance(const Amounts& left, const Amounts& right, const Amounts& tolerances) {
    double greatest = 0.0;
    for (size_t i = 0; i < left.size(); ++i) {
        if (left[i] == right[i])
            continue;
        const double scale = std::max(std::abs(left[i]), std::abs(right[i]));
        const double share = std::abs(left[i] - right[i]) / scale / tolerances[i];
        if (!(share <= 1.0))  // not a number either
            return std::numeric_limits<double>::infinity();
        greatest = std::max(greatest, share);
    }
    return greatest;
}

QStringView withoutTrailingBlanks(QStringView text) {
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

}  // namespace

std::optional<size_t> recordOfRow(const Amounts& row, const std::vector<KeyRecord>& records,
                                  const Amounts& tolerances) {
    std::optional<size_t> nearest;
    double nearestDistance = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < records.size(); ++i) {
        if (records[i].taken)
            continue;
        const double found = distance(row, records[i].amounts, tolerances);
        if (found < nearestDistance) {
            nearest = i;
            nearestDistance = found;
        }
    }
    return nearest;
}

bool sameText(const QString& left, const QString& right) {
    return withoutTrailingBlanks(left) == withoutTrailingBlanks(right);
}

}  // namespace vatchange
