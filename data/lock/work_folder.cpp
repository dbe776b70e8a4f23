#include "data/lock/work_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "data/error.h"

namespace data {

namespace {

const QString kPattern = QStringLiteral(".zavdb-XXXXXX");
const QString kNamesOfAll = QStringLiteral(".zavdb-??????");
const QString kLockName = QStringLiteral("lock");

// Another process may take a new work folder for one that was left, until its lock is held.
constexpr int kAttempts = 10;

QString lockIn(const QString& workFolder) {
    return QDir(workFolder).filePath(kLockName);
}

/// Takes the lock of a work folder. @return nullptr if somebody else has it or it has no lock file.
std::unique_ptr<LockFile> tryLock(const QString& workFolder) {
    try {
        auto lock = std::make_unique<LockFile>(lockIn(workFolder));
        return lock->tryLock(0, 1) && QFileInfo::exists(lockIn(workFolder)) ? std::move(lock)
                                                                            : nullptr;
    } catch (const DataError&) {
        return nullptr;  // gone, or somebody else's whom this user cannot judge
    }
}

void removeWorkFolder(const QString& path, std::unique_ptr<LockFile> lock) {
    // the lock last: without it the folder looks like a new one
    QDir folder(path);
    const QStringList names =
        folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const QFileInfo entry(folder.filePath(name));
        if (name == kLockName)
            continue;
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            folder.remove(name);
    }
    lock.reset();  // an open file cannot be removed everywhere
    folder.remove(kLockName);
    QDir().rmdir(path);
}

}  // namespace

void removeAbandonedWorkFolders(const QString& folder) {
    const QStringList names = QDir(folder).entryList(
        {kNamesOfAll}, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const QString path = QDir(folder).filePath(name);
        if (!QFileInfo::exists(lockIn(path)))
            QDir().rmdir(path);  // only if it is empty
        else if (std::unique_ptr<LockFile> lock = tryLock(path))
            removeWorkFolder(path, std::move(lock));
    }
}

WorkFolder::WorkFolder(const QString& folder) {
    removeAbandonedWorkFolders(folder);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        QTemporaryDir made(QDir(folder).filePath(kPattern));
        if (!made.isValid())
            throw DataError(
                ErrorKind::Io, folder,
                QStringLiteral("the folder cannot be written: %1").arg(made.errorString()))
                .inFinnish(QStringLiteral("kansioon ei voi kirjoittaa"));
        m_lock = tryLock(made.path());
        if (m_lock) {
            made.setAutoRemove(false);
            m_path = made.path();
            return;
        }
    }
    throw DataError(ErrorKind::Io, folder, QStringLiteral("no file in it can be locked"))
        .inFinnish(QStringLiteral("kansion tiedostoja ei voi lukita"));
}

WorkFolder::~WorkFolder() {
    removeWorkFolder(m_path, std::move(m_lock));
}

QString WorkFolder::filePath(const QString& name) const {
    return QDir(m_path).filePath(name);
}

}  // namespace data
