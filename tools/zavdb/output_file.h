#pragma once

#include <QIODevice>
#include <QString>
#include <functional>

namespace tools {

/// Writes a file through `write`: a new one, put in the place of an old one when it is whole. What
/// is no ordinary file (a device, a pipe) is written into and stays what it is.
/// @return what `write` returns. @throws CommandError naming the file, and what `write` throws.
qint64 writeFile(const QString& fileName, const std::function<qint64(QIODevice&)>& write);

}  // namespace tools
