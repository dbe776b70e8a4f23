#include "platform/ini_change.h"

#include "data/error.h"

namespace platform {

std::unique_ptr<QLockFile> lockForChange(const QString& fileName, std::chrono::milliseconds wait) {
    auto lock = std::make_unique<QLockFile>(fileName + QStringLiteral(".lock"));
    if (!lock->tryLock(wait)) {
        const bool held = lock->error() == QLockFile::LockFailedError;
        if (held)
            throw data::DataError(data::ErrorKind::Locked, fileName,
                                  QStringLiteral("another program is saving into it"))
                .inFinnish(QStringLiteral("toinen ohjelma on tallettamassa siihen"),
                           QStringLiteral("Yritä hetken kuluttua uudelleen."));
        throw data::DataError(data::ErrorKind::Io, fileName,
                              QStringLiteral("the folder cannot be written"))
            .inFinnish(QStringLiteral("kansioon ei voi kirjoittaa"),
                       QStringLiteral("Tarkista kansion käyttöoikeudet."));
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
