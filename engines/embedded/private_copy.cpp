#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <tuple>

#include "data/lock/lock_file.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/copy_pages.h"
#include "engines/embedded/embedded_database.h"

namespace engines {

namespace embedded {

namespace {

using Progress = std::function<bool(int done, int total)>;

constexpr int kBusyTimeoutMs = 10000;
constexpr int kAttempts = 5;

/// SQLite's names: next to the file itself if it is reached through a symbolic link.
QString beside(const QString& file, const char* suffix) {
    const QString real = QFileInfo(file).canonicalFilePath();
    return (real.isEmpty() ? file : real) + QLatin1String(suffix);
}

bool copyFrom(const SqliteHandle& source, const QString& from, const QString& to,
              const Progress& progress) {
    sqlite3_busy_timeout(source.get(), kBusyTimeoutMs);
    requireCompanyFile(source.get(), from);
    QFile::remove(to);  // of an attempt that failed
    const SqliteHandle target(to, SqliteHandle::Mode::Create);
    execute(target.get(), "PRAGMA synchronous = OFF; PRAGMA journal_mode = OFF", to);
    return copyPages(source.get(), from, target.get(), to, progress);
}

/// What any writer of the database changes.
struct FileState {
    explicit FileState(const QString& file) : FileState(QFileInfo(file)) {}
    bool operator==(const FileState&) const = default;

    bool exists;
    qint64 size;
    QDateTime modified;

  private:
    explicit FileState(const QFileInfo& info)
        : exists(info.exists()), size(info.size()), modified(info.lastModified()) {}
};

/// Copies a database together with the log that a program left behind, without the log's index: for
/// a log that has none, or one that its program's death left unusable to readers.
/// @return whether nobody opened the database for the first time or wrote to it meanwhile.
bool copyAbandonedFiles(const QString& from, const QString& to) {
    const QString log = beside(from, "-wal");
    const QString index = beside(from, "-shm");
    const auto state = [&] {
        return std::tuple(FileState(from), FileState(log), QFileInfo::exists(index));
    };
    const auto before = state();
    const std::array<std::pair<QString, QString>, 2> files{
        {{from, to}, {log, to + QStringLiteral("-wal")}}};
    for (const auto& [source, copy] : files) {
        QFile::remove(copy);
        QFile file(source);
        if (!file.copy(copy))
            throw DataError(ErrorKind::Io, source, file.errorString());
        QFile::setPermissions(copy, QFile::permissions(copy) | QFile::WriteOwner);
    }
    return state() == before;
}

/// While programs use the database, the files of its log are theirs.
bool copyShared(const QString& from, const QString& to, const Progress& progress) {
    const bool hadLog = QFileInfo::exists(beside(from, "-wal"));
    const SqliteHandle source(from, SqliteHandle::Mode::ReadWrite);
    if (hadLog)  // stays, also if this turns out to be the last program
        sqlite3_db_config(source.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    return copyFrom(source, from, to, progress);
}

}  // namespace

}  // namespace embedded

qint64 embeddedSize(const QString& folder) {
    const QString file = embedded::companyFile(folder);
    return QFileInfo(file).size() + QFileInfo(embedded::beside(file, "-wal")).size();
}

bool copyEmbedded(const QString& folder, const QString& targetFolder,
                  const std::function<bool(int done, int total)>& progress) {
    using namespace embedded;
    const QString from = companyFile(folder);
    const QString to = companyFile(targetFolder);
    if (!QFileInfo::exists(from))
        throw DataError(ErrorKind::NoConnection, from, QStringLiteral("no such file"))
            .inFinnish(QStringLiteral("tiedostoa ei ole"));
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (!QFileInfo::exists(beside(from, "-wal")))
            return copyShared(from, to, progress);
        if (!QFileInfo::exists(beside(from, "-shm"))) {
            if (copyAbandonedFiles(from, to))
                return true;
            continue;
        }
        try {
            const SqliteHandle source(from, SqliteHandle::Mode::Untouched);
            return copyFrom(source, from, to, progress);
        } catch (const DataError& error) {
            if ((error.nativeCode() & 0xff) == SQLITE_PROTOCOL) {  // a killed program's index
                if (copyAbandonedFiles(from, to))
                    return true;
                continue;
            }
            // the log's files are gone by now, or its index has no place for a reader that must
            // not write into it, which is so only while another program has the database open
            if (error.kind() != ErrorKind::NoConnection && error.kind() != ErrorKind::ReadOnly)
                throw;
        }
        if (QFileInfo::exists(beside(from, "-wal")) && QFileInfo::exists(beside(from, "-shm")))
            return copyShared(from, to, progress);
    }
    throw DataError(ErrorKind::Locked, from,
                    QStringLiteral("other programs open and close the database all the time"))
        .inFinnish(QStringLiteral("muut ohjelmat avaavat ja sulkevat tietokantaa jatkuvasti"));
}

bool runGoesOnInEmbedded(const QString& folder) {
    using namespace embedded;
    const QString lockFile = Connection::lockFileName(companyFile(folder));
    return QFileInfo::exists(lockFile) && LockFile(lockFile).runGoesOn();
}

}  // namespace engines
