#pragma once

#include <QString>

namespace data {

/// A file name as this program's own calls of the operating system take it. On Windows a long name
/// gets the prefix that frees it from the limit of 260 characters; elsewhere nothing changes. For
/// what does not go through QFile, which does the same by itself.
QString systemPath(const QString& fileName);

}  // namespace data
