#include "platform/ini_change.h"

#include "data/error.h"

namespace platform {

std::unique_ptr<QLockFile> lockForChange(const QString& fileName, std::chrono::milliseconds wait) {
    auto lock = std::make_unique<QLockFile>(fileName + QStringLiteral(".lock"));
    if (!lock->tryLock(wait)) {
        const bool held = lock->error() == QLockFile::LockFailedError;
        throw data::DataError(held ? data::ErrorKind::Locked : data::ErrorKind::Io, fileName,
                              held ? QStringLiteral("another program is saving into it")
                                   : QStringLiteral("the folder cannot be written"));
    }
    return lock;
}

void changeIniFile(const QString& fileName, const std::function<bool(IniFile&)>& edit) {
    const auto lock = lockForChange(fileName);
    IniFile file = IniFile::read(fileName);
    if (edit(file))
        file.write(fileName);
}

}  // namespace platform
