#pragma once

#include <QLockFile>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "platform/ini_file.h"

namespace platform {

/// How long a window waits for another program's lock on a file.
inline constexpr std::chrono::milliseconds kFileLockWait{5000};

/// Takes the lock file "NAME.lock", which every program takes before it changes the file.
/// Destroying the result releases it. The lock of a killed program is taken over.
/// @throws data::DataError(Locked, Io) naming the file.
std::unique_ptr<QLockFile> lockForChange(const QString& fileName,
                                         std::chrono::milliseconds wait = kFileLockWait);

/// Reads the file under its lock, calls `edit` and writes the result back, unless `edit` returns
/// false.
/// @throws data::DataError naming the file.
void changeIniFile(const QString& fileName, const std::function<bool(IniFile&)>& edit);

}  // namespace platform
