#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// Opens (or creates) a file, appends the bytes in one system call and closes it, so that lines of
/// several programs stay whole. The file may be a device, but no pipe.
/// @return what failed, in Finnish; empty on success
QString appendToFile(const QString& fileName, const QByteArray& bytes);

}  // namespace platform
