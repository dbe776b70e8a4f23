#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// Compares for equality, ignoring only the case of a to z.
bool sameIgnoringAsciiCase(const QString& a, const QString& b);

/// Sorts in Finnish order: case ignored, å, ä, ö after z.
void sortInFinnishOrder(QStringList& names);

}  // namespace platform
