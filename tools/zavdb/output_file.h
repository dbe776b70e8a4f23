#pragma once

#include <QIODevice>
#include <QString>
#include <functional>

namespace tools {

/// Writes a file through `write` and replaces an old one when complete. Devices and pipes are
/// written into and not replaced.
/// @return what `write` returns. @throws CommandError naming the file, and what `write` throws.
qint64 writeFile(const QString& fileName, const std::function<qint64(QIODevice&)>& write);

}  // namespace tools
