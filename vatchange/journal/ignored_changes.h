#pragma once

#include <QString>

namespace vatchange {

// Differences from what a run left that do not count as later changes.

/// Date or time of a record's last change, which the run itself sets.
bool isChangeDate(const QString& table, const QString& field);
/// Shelf labels and web shop marks: other programs consume them.
bool isConsumedTable(const QString& table);
inline const QString kLabelTable = QStringLiteral("HR");
inline const QString kWebShopTable = QStringLiteral("WEBKLIITOS");

/// The run mark's row of the settings table. `key`: the fields of key 0, joined by a blank.
bool isRunMark(const QString& table, const QString& key);

}  // namespace vatchange
