#include <QFile>
#include <QFileInfo>

#include "data/lock/work_folder.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/embedded_database.h"

namespace engines {

namespace embedded {

namespace {

constexpr int kPagesPerStep = 1024;

struct BackupHandle {
    explicit BackupHandle(sqlite3_backup* made) : backup(made) {}
    ~BackupHandle() { sqlite3_backup_finish(backup); }
    BackupHandle(const BackupHandle&) = delete;
    BackupHandle& operator=(const BackupHandle&) = delete;
    sqlite3_backup* backup;
};

// @return false if `progress` cancelled.
bool copyPages(const QString& from, const QString& to,
               const std::function<bool(int done, int total)>& progress) {
    Connection source(from);
    SqliteHandle target(to, SqliteHandle::Mode::Create);
    // Hold one read transaction for the whole copy: concurrent writes stay out of it and do not
    // restart it.
    execute(source.db(), "BEGIN", from);
    Statement(source.db(), "SELECT count(*) FROM sqlite_master", from).step();
    const BackupHandle handle(sqlite3_backup_init(target.get(), "main", source.db(), "main"));
    if (handle.backup == nullptr)
        throwSqlite(target.get(), sqlite3_errcode(target.get()), to);
    for (;;) {
        const int code = sqlite3_backup_step(handle.backup, kPagesPerStep);
        const int total = sqlite3_backup_pagecount(handle.backup);
        const int done = total - sqlite3_backup_remaining(handle.backup);
        if (code != SQLITE_OK && code != SQLITE_DONE)
            throwSqlite(target.get(), code, to);
        if (progress && !progress(done, total))
            return false;
        if (code == SQLITE_DONE)
            break;
    }
    return true;
}

}  // namespace

}  // namespace embedded

void backupEmbedded(const QString& folder, const QString& targetFile,
                    const std::function<bool(int done, int total)>& progress) {
    using namespace embedded;
    if (QFile::exists(targetFile))
        throw DataError(ErrorKind::Io, targetFile, QStringLiteral("the file exists already"));
    // In a temporary folder next to the target: no other file can be in the way.
    const WorkFolder workFolder(QFileInfo(targetFile).absolutePath());
    const QString unfinished = companyFile(workFolder.path());
    if (copyPages(companyFile(folder), unfinished, progress) &&
        !QFile::rename(unfinished, targetFile))
        throw DataError(ErrorKind::Io, targetFile,
                        QStringLiteral("the finished copy cannot be named"));
}

}  // namespace engines
