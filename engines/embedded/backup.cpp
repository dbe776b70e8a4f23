#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "data/lock/work_folder.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/copy_pages.h"
#include "engines/embedded/embedded_database.h"

namespace engines {

namespace embedded {

namespace {

constexpr qint64 kBytesPerRead = 1 << 20;

// @return false if `progress` cancelled.
bool copyInto(const QString& from, const QString& to, const CopyProgress& progress) {
    Connection source(from);
    const SqliteHandle target(to, SqliteHandle::Mode::Create);
    return copyPages(source.db(), from, target.get(), to, [&progress](int done, int total) {
        return !progress || progress(CopyPhase::Copying, done, total);
    });
}

DataError damagedCopy(const QString& named, const QString& english) {
    return DataError(ErrorKind::Damaged, named,
                     QStringLiteral("the check of the copy found errors: ") + english)
        .inFinnish(QStringLiteral("kopion tarkastuksessa löytyi virheitä, tai se ei ole yrityksen "
                                  "tietokanta"),
                   QStringLiteral("Komento \"zavdb check\" luettelee käytössä olevan yrityksen "
                                  "virheet."));
}

// Checks the database of a work folder. `named`: what it is a copy of, for the error.
// @return false if `progress` cancelled.
bool checkCopy(const QString& folder, const QString& named, const CopyProgress& progress) {
    try {
        openEmbedded({}, folder);
    } catch (const DataError& error) {
        if (error.kind() != ErrorKind::Damaged)
            throw;
        throw damagedCopy(named, error.detail());
    }
    const std::optional<QStringList> lines =
        checkEmbedded(folder, [&progress](qint64 done, qint64 total) {
            return !progress || progress(CopyPhase::Checking, done, total);
        });
    if (lines && !lines->isEmpty())
        throw damagedCopy(
            named,
            QStringLiteral("%1 in all, the first: %2").arg(lines->size()).arg(lines->first()));
    return lines.has_value();
}

DataError writeFailure(const QSaveFile& file) {
    const bool full = file.error() == QFileDevice::ResourceError;
    return DataError(full ? ErrorKind::DiskFull : ErrorKind::Io, file.fileName(),
                     file.errorString());
}

// A plain copy: a backup may lie on a medium that nothing can be written to.
bool copyFile(const QString& from, const QString& to, const CopyProgress& progress) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        throw DataError(ErrorKind::Io, from, source.errorString());
    QSaveFile target(to);  // its commit flushes to the disk
    if (!target.open(QIODevice::WriteOnly))
        throw DataError(ErrorKind::Io, to, target.errorString());
    const qint64 total = source.size();
    while (!source.atEnd()) {
        const QByteArray bytes = source.read(kBytesPerRead);
        if (bytes.isEmpty())
            throw DataError(ErrorKind::Io, from, source.errorString());
        if (target.write(bytes) != bytes.size())
            throw writeFailure(target);
        if (progress && !progress(CopyPhase::Copying, source.pos(), total))
            return false;
    }
    if (!target.commit())
        throw writeFailure(target);
    return true;
}

DataError inUse(const QString& file) {
    return DataError(ErrorKind::Locked, file,
                     QStringLiteral("a program has the database open; close it everywhere"))
        .inFinnish(QStringLiteral("tietokanta on auki jossakin ohjelmassa"),
                   QStringLiteral("Sulje yritys kaikista ohjelmista ja kaikilta koneilta ja yritä "
                                  "uudestaan."));
}

// Holds a database that no other connection has open, its log written back into the file. One
// that is too damaged to be opened is held by nobody.
class SoleUse {
  public:
    /// @throws DataError(Locked).
    explicit SoleUse(const QString& file) {
        try {
            m_handle = SqliteHandle(file, SqliteHandle::Mode::ReadWrite);
            sqlite3_busy_timeout(m_handle.get(), kBusyTimeoutMs);
            execute(m_handle.get(), "PRAGMA locking_mode = EXCLUSIVE", file);
            Statement mode(m_handle.get(), "PRAGMA journal_mode = DELETE", file);
            if (mode.step() && mode.text(0) != QLatin1String("delete"))
                throw inUse(file);
            mode.reset();
            execute(m_handle.get(), "BEGIN EXCLUSIVE", file);
        } catch (const DataError& error) {
            if (error.kind() == ErrorKind::Locked)
                throw inUse(file);
            if (error.kind() != ErrorKind::Damaged)
                throw;
            m_handle = SqliteHandle();
        }
#ifdef Q_OS_WIN
        // an open file cannot be renamed there, whoever has it open
        m_handle = SqliteHandle();
#endif
    }

  private:
    static constexpr int kBusyTimeoutMs = 2000;
    SqliteHandle m_handle;
};

void rename(const QString& from, const QString& to) {
    QFile file(from);
    if (!file.rename(to))
        throw DataError(ErrorKind::Io, from,
                        QStringLiteral("cannot be renamed to %1: %2").arg(to, file.errorString()));
}

void exchange(const QString& file, const QString& restored, const QString& kept) {
    if (!QFile::exists(file)) {
        rename(restored, file);
        return;
    }
    const SoleUse use(file);
    const QFileDevice::Permissions rights = QFile::permissions(file);
    rename(file, kept);
    try {
        rename(restored, file);
    } catch (const DataError&) {
        rename(kept, file);
        throw;
    }
    QFile::setPermissions(file, rights);
    // of a database that was too damaged for its log to be written back
    for (const QString& part : {QStringLiteral("-wal"), QStringLiteral("-shm")}) {
        if (QFile::exists(file + part))
            rename(file + part, kept + part);
    }
}

}  // namespace

}  // namespace embedded

bool backupEmbedded(const QString& folder, const QString& targetFile, const CopyProgress& progress,
                    CopyCheck check) {
    using namespace embedded;
    if (QFile::exists(targetFile))
        throw DataError(ErrorKind::Io, targetFile, QStringLiteral("the file exists already"))
            .inFinnish(QStringLiteral("tiedosto on jo olemassa"));
    // In a temporary folder next to the target: no other file can be in the way.
    const WorkFolder workFolder(QFileInfo(targetFile).absolutePath());
    const QString unfinished = companyFile(workFolder.path());
    if (!copyInto(companyFile(folder), unfinished, progress))
        return false;
    if (check == CopyCheck::Records && !checkCopy(workFolder.path(), companyFile(folder), progress))
        return false;
    if (!QFile::rename(unfinished, targetFile))
        throw DataError(ErrorKind::Io, targetFile,
                        QStringLiteral("the finished copy cannot be named"))
            .inFinnish(QStringLiteral("valmista kopiota ei voi nimetä"));
    return true;
}

bool restoreEmbedded(const QString& folder, const QString& backupFile, const QString& keptFile,
                     const CopyProgress& progress) {
    using namespace embedded;
    QString file = companyFile(folder);
    if (QFileInfo::exists(file))
        file = QFileInfo(file).canonicalFilePath();  // the lock file and the log lie there
    const WorkFolder workFolder(QFileInfo(file).absolutePath());
    const QString restored = companyFile(workFolder.path());
    if (!copyFile(backupFile, restored, progress) ||
        !checkCopy(workFolder.path(), backupFile, progress))
        return false;
    exchange(file, restored, keptFile);
    return true;
}

}  // namespace engines
