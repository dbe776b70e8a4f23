#include "data/system_path.h"

#include <QDir>

namespace data {

QString systemPath(const QString& fileName) {
#ifdef Q_OS_WIN
    // Leaves 12 characters for suffixes of a folder's or database's name ("-journal").
    constexpr qsizetype kLongest = 260 - 1 - 12;
    const QString full = QDir::toNativeSeparators(QDir(fileName).absolutePath());
    if (full.size() <= kLongest || full.startsWith(QLatin1String("\\\\?\\")))
        return fileName;
    if (full.startsWith(QLatin1String("\\\\")))  // \\server\share\...
        return QLatin1String("\\\\?\\UNC\\") + full.mid(2);
    return QLatin1String("\\\\?\\") + full;
#else
    return fileName;
#endif
}

}  // namespace data
