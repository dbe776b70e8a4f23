#include "company/ini_change.h"

#include "data/error.h"

namespace company {

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

void changeIniFile(const QString& fileName, const std::function<bool(platform::IniFile&)>& edit) {
    const auto lock = lockForChange(fileName);
    platform::IniFile file = platform::IniFile::read(fileName);
    if (edit(file))
        file.write(fileName);
}

}  // namespace company
