#pragma once

#include <QLockFile>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "platform/ini_file.h"

namespace platform {

/// How long a window waits for another program to let go of a file.
inline constexpr std::chrono::milliseconds kFileLockWait{5000};

/// Takes the lock file "NAME.lock", which every program takes before it changes the file; given
/// back with the result. The lock of a program that was killed is taken over.
/// @throws data::DataError(Locked, Io) naming the file.
std::unique_ptr<QLockFile> lockForChange(const QString& fileName,
                                         std::chrono::milliseconds wait = kFileLockWait);

/// Rereads the file under its lock, has it edited and writes it back; `edit` returning false leaves
/// it as it is. @throws data::DataError naming the file.
void changeIniFile(const QString& fileName, const std::function<bool(IniFile&)>& edit);

}  // namespace platform
