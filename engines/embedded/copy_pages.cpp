#include "engines/embedded/copy_pages.h"

#include "engines/embedded/sqlite_names.h"
#include "engines/sqlite/sqlite_handle.h"

namespace engines::embedded {

namespace {

constexpr int kPagesPerStep = 1024;

struct BackupHandle {
    explicit BackupHandle(sqlite3_backup* made) : backup(made) {}
    ~BackupHandle() { sqlite3_backup_finish(backup); }
    BackupHandle(const BackupHandle&) = delete;
    BackupHandle& operator=(const BackupHandle&) = delete;
    sqlite3_backup* backup;
};

}  // namespace

bool copyPages(sqlite3* source, const QString& from, sqlite3* target, const QString& to,
               const std::function<bool(int done, int total)>& progress) {
    execute(source, "BEGIN", from);
    Statement(source, "SELECT count(*) FROM sqlite_master", from).step();
    const BackupHandle handle(sqlite3_backup_init(target, "main", source, "main"));
    if (handle.backup == nullptr)
        throwSqlite(target, sqlite3_errcode(target), to);
    for (;;) {
        const int code = sqlite3_backup_step(handle.backup, kPagesPerStep);
        const int total = sqlite3_backup_pagecount(handle.backup);
        const int done = total - sqlite3_backup_remaining(handle.backup);
        if (code != SQLITE_OK && code != SQLITE_DONE)
            throwSqlite(target, code, to);
        if (progress && !progress(done, total))
            return false;
        if (code == SQLITE_DONE)
            return true;
    }
}

}  // namespace engines::embedded
