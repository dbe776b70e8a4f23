#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "data/error.h"

namespace platform {

/// Reads up to `most` bytes of a regular file; nothing if there is none. Pipes, devices and folders
/// are refused: reading a pipe can wait for ever.
/// @throws data::DataError(Io) naming the file, also if its folder may not be entered.
std::optional<QByteArray> readRegularFile(const QString& fileName, qint64 most);

/// A system error (errno; on Windows of GetLastError) in Finnish; the system's own text for a rare
/// one.
QString systemErrorFinnish(int code);

/// The error (Io) for a folder that cannot be made.
data::DataError folderCannotBeMade(const QString& folder);

}  // namespace platform
