#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace vatchange {

/// The group numbers of a comma-separated list, and the items that are not numbers.
struct IgnoreList {
    QList<qint64> numbers;
    QStringList dropped;  ///< without the blanks around them; empty items are not listed
};

/// Parses a list of group numbers to leave out. Each item, trimmed, has to be ASCII digits that fit
/// 64 bits (no group column holds more).
IgnoreList parseIgnoreList(const QString& text);

}  // namespace vatchange
