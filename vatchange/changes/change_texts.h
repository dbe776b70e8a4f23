#pragma once

#include <QString>

#include "vatchange/changes/change_list.h"

namespace vatchange {

// Texts of a list's rows as people read them: Finnish names, decimal comma.

QString fieldTitleOf(const ChangeList& list, int row);  ///< "Taso 3", "uusi rivi"
QString beforeShown(const ChangeList& list, int row);
QString afterShown(const ChangeList& list, int row);
QString differenceShown(const ChangeList& list, int row);  ///< "+0,12"
QString percentShown(const ChangeList& list, int row);     ///< "+1,21", without a sign for percent
/// The row's findings with their reasons: "Poikkeaa odotetusta; hinta ennallaan: pyöristys".
QString findingsShown(const ChangeList& list, int row);

/// A number with decimals: at least two, at most four, with the Finnish decimal comma.
QString amountShown(double amount);
/// The same for files: no grouping, an ASCII minus.
QString plainAmount(double amount);

}  // namespace vatchange
