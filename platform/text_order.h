#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// Equality that ignores the case of the letters a to z only.
bool sameIgnoringAsciiCase(const QString& a, const QString& b);

/// Orders names as a Finnish reader expects: case ignored, å, ä, ö after z.
void sortForFinnishEyes(QStringList& names);

}  // namespace platform
