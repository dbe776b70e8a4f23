#include "engines/sqlite/joined_log_writes.h"

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <vector>

namespace engines::sqlite {

namespace {

// The log's format: a header, then frames of a frame header and a page. A frame header begins with
// the page's number and, in the last frame of a commit, the database's size in pages, else 0.
constexpr int kLogHeaderBytes = 32;
constexpr int kFrameHeaderBytes = 24;
constexpr int kPageCountAt = 4;
constexpr int kPageCountBytes = 4;
// A transaction larger than the page cache writes frames before its commit.
constexpr size_t kMaxWaiting = 65536;

struct JoiningFileSystem : sqlite3_vfs {
    sqlite3_vfs* base = nullptr;
    std::string name;
};

// The base's file follows this one in the memory that SQLite allocates.
struct alignas(8) LogFile : sqlite3_file {
    std::vector<char> waiting;
    sqlite3_int64 start = 0;  // of the waiting bytes in the file
    // SQLite also rewrites headers and pages of earlier frames, which are not followed by the rest
    // of a frame: only a header behind the frame written last begins one.
    sqlite3_int64 header = -1;  // where the last frame header was written
    sqlite3_int64 next = -1;    // where the next frame begins
    bool endsCommit = false;    // the last frame header's
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

LogFile& logOf(sqlite3_file* file) {
    return *static_cast<LogFile*>(file);
}

sqlite3_file* realOf(sqlite3_file* file) {
    return logOf(file).real();
}

int writeWaiting(LogFile& log) {
    if (log.waiting.empty())
        return SQLITE_OK;
    const int code = log.real()->pMethods->xWrite(log.real(), log.waiting.data(),
                                                  static_cast<int>(log.waiting.size()), log.start);
    log.waiting.clear();
    return code;
}

bool isPowerOfTwo(int number) {
    return number > 0 && (number & (number - 1)) == 0;
}

// Follows what SQLite writes, as far as frames go.
void noteWrite(LogFile& log, const char* bytes, int count, sqlite3_int64 offset) {
    if (offset == 0) {
        log.next = kLogHeaderBytes;
    } else if (count == kFrameHeaderBytes) {
        log.header = offset;
        log.endsCommit = std::any_of(bytes + kPageCountAt, bytes + kPageCountAt + kPageCountBytes,
                                     [](char byte) { return byte != 0; });
    } else if (offset == log.header + kFrameHeaderBytes && isPowerOfTwo(count)) {  // a whole page
        log.next = offset + count;
    }
}

int writeLog(sqlite3_file* file, const void* data, int count, sqlite3_int64 offset) {
    LogFile& log = logOf(file);
    const auto* bytes = static_cast<const char*>(data);
    const bool beginsFrame = count == kFrameHeaderBytes && offset == log.next;
    const auto end = log.start + static_cast<sqlite3_int64>(log.waiting.size());
    const bool continues = !log.waiting.empty() && offset == end;
    if (!continues) {
        const int code = writeWaiting(log);
        if (code != SQLITE_OK)
            return code;
        log.start = offset;
    }
    noteWrite(log, bytes, count, offset);
    if (!continues && !beginsFrame)
        return log.real()->pMethods->xWrite(log.real(), data, count, offset);
    log.waiting.insert(log.waiting.end(), bytes, bytes + count);
    const bool waits = beginsFrame || (!log.endsCommit && log.waiting.size() < kMaxWaiting);
    return waits ? SQLITE_OK : writeWaiting(log);
}

int closeLog(sqlite3_file* file) {
    LogFile& log = logOf(file);
    const int written = writeWaiting(log);
    const int code = log.real()->pMethods->xClose(log.real());
    log.~LogFile();
    return code != SQLITE_OK ? code : written;
}

// Forwards a call to the base's file, after what waits has been written.
template <auto kMethod>
struct Forward;
template <typename... Arguments, int (*sqlite3_io_methods::*kMethod)(sqlite3_file*, Arguments...)>
struct Forward<kMethod> {
    static int call(sqlite3_file* file, Arguments... arguments) {
        const int code = writeWaiting(logOf(file));
        return code != SQLITE_OK ? code
                                 : (realOf(file)->pMethods->*kMethod)(realOf(file), arguments...);
    }
};

int sectorSize(sqlite3_file* file) {
    return realOf(file)->pMethods->xSectorSize(realOf(file));
}

int deviceCharacteristics(sqlite3_file* file) {
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

// A log is neither mapped nor does it have shared memory: version 1.
const sqlite3_io_methods kLogMethods = [] {
    sqlite3_io_methods methods = {};
    methods.iVersion = 1;
    methods.xClose = closeLog;
    methods.xRead = Forward<&sqlite3_io_methods::xRead>::call;
    methods.xWrite = writeLog;
    methods.xTruncate = Forward<&sqlite3_io_methods::xTruncate>::call;
    methods.xSync = Forward<&sqlite3_io_methods::xSync>::call;
    methods.xFileSize = Forward<&sqlite3_io_methods::xFileSize>::call;
    methods.xLock = Forward<&sqlite3_io_methods::xLock>::call;
    methods.xUnlock = Forward<&sqlite3_io_methods::xUnlock>::call;
    methods.xCheckReservedLock = Forward<&sqlite3_io_methods::xCheckReservedLock>::call;
    methods.xFileControl = Forward<&sqlite3_io_methods::xFileControl>::call;
    methods.xSectorSize = sectorSize;
    methods.xDeviceCharacteristics = deviceCharacteristics;
    return methods;
}();

int openFile(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags,
             int* outFlags) {
    sqlite3_vfs* base = static_cast<JoiningFileSystem*>(vfs)->base;
    if ((flags & SQLITE_OPEN_WAL) == 0)
        return base->xOpen(base, name, file, flags, outFlags);
    auto* log = new (file) LogFile;
    log->pMethods = nullptr;
    const int code = base->xOpen(base, name, log->real(), flags, outFlags);
    if (code != SQLITE_OK) {
        log->~LogFile();
        file->pMethods = nullptr;
        return code;
    }
    log->pMethods = &kLogMethods;
    return SQLITE_OK;
}

}  // namespace

const char* withJoinedLogWrites(const char* base) {
    static std::mutex mutex;
    // never destroyed: a connection may be closed at the very end
    static auto& made = *new std::map<sqlite3_vfs*, JoiningFileSystem*>;
    sqlite3_vfs* below = sqlite3_vfs_find(base);
    if (below == nullptr)
        return nullptr;
    const std::lock_guard<std::mutex> lock(mutex);
    JoiningFileSystem*& system = made[below];
    if (system == nullptr) {
        system = new JoiningFileSystem;
        static_cast<sqlite3_vfs&>(*system) = *below;
        system->base = below;
        system->name = std::string("joined-") + below->zName;
        system->zName = system->name.c_str();
        system->pNext = nullptr;
        system->szOsFile += static_cast<int>(sizeof(LogFile));
        system->xOpen = openFile;
        sqlite3_vfs_register(system, 0);
    }
    return system->zName;
}

}  // namespace engines::sqlite
