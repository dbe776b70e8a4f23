#include "tests/faults/failing_calls.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstdarg>
#include <map>
#include <string>
#include <utility>

namespace test {

namespace {

struct Watch {
    std::string folder;  // empty: nothing is watched
    FailingCalls::Judge judge;
    bool judging = false;  // the judge's own calls pass
};

Watch& watch() {
    static Watch current;
    return current;
}

std::string pathOf(int descriptor) {
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
    return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

// Returns true and sets errno if the call must fail.
bool fails(const char* name, const std::string& path, bool forWriting = false, qint64 bytes = 0) {
    Watch& w = watch();
    if (w.folder.empty() || w.judging || path.compare(0, w.folder.size(), w.folder) != 0)
        return false;
    w.judging = true;
    const int error =
        w.judge({QString::fromLatin1(name), QFile::decodeName(path.substr(w.folder.size()).c_str()),
                 forWriting, bytes});
    w.judging = false;
    if (error != 0)
        errno = error;
    return error != 0;
}

bool failsOn(const char* name, int descriptor, qint64 bytes = 0) {
    return !watch().folder.empty() && !watch().judging &&
           fails(name, pathOf(descriptor), false, bytes);
}

long openAt(int folder, const char* path, int flags, mode_t mode) {
    if (path[0] == '/' && fails("open", path, (flags & O_ACCMODE) != O_RDONLY))
        return -1;
    return ::syscall(SYS_openat, folder, path, flags, mode);
}

long control(int descriptor, int command, void* argument) {
    const bool isLock = command == F_SETLK || command == F_OFD_SETLK;
    const bool unlocks = isLock && static_cast<struct flock*>(argument)->l_type == F_UNLCK;
    if (isLock && failsOn(unlocks ? "unlock" : "lock", descriptor))
        return -1;
    return ::syscall(SYS_fcntl, descriptor, command, argument);
}

long renamed(const char* from, const char* to) {
    return fails("rename", to) ? -1 : ::syscall(SYS_rename, from, to);
}

}  // namespace

FailingCalls::FailingCalls(const QString& folder, Judge judge) {
    watch() = {QFile::encodeName(folder).toStdString() + "/", std::move(judge)};
}

FailingCalls::~FailingCalls() {
    watch() = {};
}

int defaultError(const FileCall& call) {
    static const std::map<QString, int> errors = {
        {"write", ENOSPC}, {"open", EACCES},   {"rename", EACCES}, {"remove", EACCES},
        {"lock", ENOLCK},  {"unlock", ENOLCK}, {"map", ENOMEM}};
    const auto found = errors.find(call.name);
    return found == errors.end() ? EIO : found->second;
}

}  // namespace test

// The C library's names, with their 64-bit aliases.
#pragma GCC visibility push(default)
extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return static_cast<int>(test::openAt(AT_FDCWD, path, flags, mode));
}

ssize_t read(int descriptor, void* to, size_t count) {
    if (test::failsOn("read", descriptor))
        return -1;
    return ::syscall(SYS_read, descriptor, to, count);
}

ssize_t pread64(int descriptor, void* to, size_t count, off64_t offset) {
    if (test::failsOn("read", descriptor))
        return -1;
    return ::syscall(SYS_pread64, descriptor, to, count, offset);
}

ssize_t write(int descriptor, const void* from, size_t count) {
    if (test::failsOn("write", descriptor, static_cast<qint64>(count)))
        return -1;
    return ::syscall(SYS_write, descriptor, from, count);
}

ssize_t pwrite64(int descriptor, const void* from, size_t count, off64_t offset) {
    if (test::failsOn("write", descriptor, static_cast<qint64>(count)))
        return -1;
    return ::syscall(SYS_pwrite64, descriptor, from, count, offset);
}

// No test loses power, so nothing is flushed to the disk.
int fsync(int descriptor) {
    return test::failsOn("flush", descriptor) ? -1 : 0;
}

int ftruncate(int descriptor, off_t size) noexcept {
    return test::failsOn("truncate", descriptor)
               ? -1
               : static_cast<int>(::syscall(SYS_ftruncate, descriptor, size));
}

// A failing close closes the file anyway.
int close(int descriptor) {
    const bool failed = test::failsOn("close", descriptor);
    const int error = errno;
    const auto result = static_cast<int>(::syscall(SYS_close, descriptor));
    if (!failed)
        return result;
    errno = error;
    return -1;
}

int fcntl(int descriptor, int command, ...) {
    va_list rest;
    va_start(rest, command);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    return static_cast<int>(test::control(descriptor, command, argument));
}

void* mmap64(void* at, size_t size, int protection, int flags, int descriptor,
             off64_t offset) noexcept {
    if (descriptor >= 0 && test::failsOn("map", descriptor))
        return MAP_FAILED;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): what the system call returns is an address
    return reinterpret_cast<void*>(
        ::syscall(SYS_mmap, at, size, protection, flags, descriptor, offset));
}

int fstat64(int descriptor, struct stat64* to) noexcept {
    if (test::failsOn("size", descriptor))
        return -1;
    return static_cast<int>(::syscall(SYS_fstat, descriptor, to));
}

int rename(const char* from, const char* to) noexcept {
    return static_cast<int>(test::renamed(from, to));
}

int unlink(const char* path) noexcept {
    return test::fails("remove", path) ? -1 : static_cast<int>(::syscall(SYS_unlink, path));
}

int open64(const char* path, int flags, ...) __attribute__((alias("open")));
int fcntl64(int descriptor, int command, ...) __attribute__((alias("fcntl")));
int ftruncate64(int descriptor, off64_t size) noexcept __attribute__((alias("ftruncate")));
int fdatasync(int descriptor) __attribute__((alias("fsync")));

}  // extern "C"
#pragma GCC visibility pop
