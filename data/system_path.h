#pragma once

#include <QString>

namespace data {

/// A file name for direct calls of the operating system (QFile does this itself). On Windows a long
/// name gets the prefix that lifts the 260-character limit; elsewhere unchanged.
QString systemPath(const QString& fileName);

}  // namespace data
