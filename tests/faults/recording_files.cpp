#include "tests/faults/recording_files.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>

#include "engines/sqlite/sqlite_handle.h"
#include "tests/support/company_folder.h"

namespace test {

namespace {

constexpr char kName[] = "recording";
constexpr qint64 kSector = 512;

std::vector<FileEvent>& recorded() {
    static std::vector<FileEvent> events;
    return events;
}

// The platform's file follows this one in the memory allocated by SQLite.
struct RecordedFile : sqlite3_file {
    QString name;  // empty: a temporary file, which is not recorded
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

RecordedFile& fileOf(sqlite3_file* file) {
    return *static_cast<RecordedFile*>(file);
}

sqlite3_file* realOf(sqlite3_file* file) {
    return fileOf(file).real();
}

void record(sqlite3_file* file, FileEvent::Kind kind, qint64 offset = 0, QByteArray bytes = {}) {
    if (!fileOf(file).name.isEmpty())
        recorded().push_back({kind, fileOf(file).name, offset, std::move(bytes)});
}

int closeFile(sqlite3_file* file) {
    const int code = realOf(file)->pMethods->xClose(realOf(file));
    fileOf(file).~RecordedFile();
    return code;
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    record(file, FileEvent::Kind::Write, offset,
           QByteArray(static_cast<const char*>(bytes), count));
    return realOf(file)->pMethods->xWrite(realOf(file), bytes, count, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    record(file, FileEvent::Kind::Truncate, size);
    return realOf(file)->pMethods->xTruncate(realOf(file), size);
}

int syncFile(sqlite3_file* file, int) {
    record(file, FileEvent::Kind::Sync);
    return SQLITE_OK;
}

// Forwards a call to the platform's file.
template <auto kMethod>
struct Forward;
template <typename Result, typename... Arguments,
          Result (*sqlite3_io_methods::*kMethod)(sqlite3_file*, Arguments...)>
struct Forward<kMethod> {
    static Result call(sqlite3_file* file, Arguments... arguments) {
        return (realOf(file)->pMethods->*kMethod)(realOf(file), arguments...);
    }
};

// Everything else is forwarded. Without xFetch: files are not mapped.
const sqlite3_io_methods kMethods = [] {
    sqlite3_io_methods methods = {};
    methods.iVersion = 2;
    methods.xClose = closeFile;
    methods.xRead = Forward<&sqlite3_io_methods::xRead>::call;
    methods.xWrite = writeFile;
    methods.xTruncate = truncateFile;
    methods.xSync = syncFile;
    methods.xFileSize = Forward<&sqlite3_io_methods::xFileSize>::call;
    methods.xLock = Forward<&sqlite3_io_methods::xLock>::call;
    methods.xUnlock = Forward<&sqlite3_io_methods::xUnlock>::call;
    methods.xCheckReservedLock = Forward<&sqlite3_io_methods::xCheckReservedLock>::call;
    methods.xFileControl = Forward<&sqlite3_io_methods::xFileControl>::call;
    methods.xSectorSize = Forward<&sqlite3_io_methods::xSectorSize>::call;
    methods.xDeviceCharacteristics = Forward<&sqlite3_io_methods::xDeviceCharacteristics>::call;
    methods.xShmMap = Forward<&sqlite3_io_methods::xShmMap>::call;
    methods.xShmLock = Forward<&sqlite3_io_methods::xShmLock>::call;
    methods.xShmBarrier = Forward<&sqlite3_io_methods::xShmBarrier>::call;
    methods.xShmUnmap = Forward<&sqlite3_io_methods::xShmUnmap>::call;
    return methods;
}();

sqlite3_vfs& platform() {
    static sqlite3_vfs* vfs = sqlite3_vfs_find(nullptr);
    return *vfs;
}

int openFile(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    auto* made = new (file) RecordedFile;
    made->pMethods = nullptr;
    constexpr int kRecorded = SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_WAL | SQLITE_OPEN_MAIN_JOURNAL;
    if (name != nullptr && (flags & kRecorded) != 0)
        made->name = QFileInfo(QString::fromUtf8(name)).fileName();
    const bool isNew = name != nullptr && !QFile::exists(QString::fromUtf8(name));
    const int code = platform().xOpen(&platform(), name, made->real(), flags, outFlags);
    if (code != SQLITE_OK) {
        made->~RecordedFile();
        file->pMethods = nullptr;
        return code;
    }
    made->pMethods = &kMethods;
    if (isNew)
        record(file, FileEvent::Kind::Create);
    return SQLITE_OK;
}

int removeFile(sqlite3_vfs*, const char* name, int syncFolder) {
    const QString fileName = QFileInfo(QString::fromUtf8(name)).fileName();
    recorded().push_back({FileEvent::Kind::Remove, fileName, syncFolder});
    return platform().xDelete(&platform(), name, 0);
}

void applyTo(QByteArray& content, const FileEvent& event) {
    if (event.kind == FileEvent::Kind::Truncate) {
        content.resize(std::min<qint64>(content.size(), event.offset));
        return;
    }
    const qint64 end = event.offset + event.bytes.size();
    if (content.size() < end)
        content.append(end - content.size(), '\0');
    std::copy(event.bytes.begin(), event.bytes.end(), content.begin() + event.offset);
}

// Applies an arbitrary subset of the write's sectors.
void applyTorn(QByteArray& content, const FileEvent& event, std::mt19937& random) {
    for (qint64 at = event.offset; at < event.offset + event.bytes.size();) {
        const qint64 end =
            std::min<qint64>((at / kSector + 1) * kSector, event.offset + event.bytes.size());
        if (random() % 2 == 0)
            applyTo(content,
                    {event.kind, event.file, at, event.bytes.mid(at - event.offset, end - at)});
        at = end;
    }
}

}  // namespace

RecordingFiles::RecordingFiles() {
    static sqlite3_vfs vfs = [] {
        sqlite3_vfs made = platform();
        made.zName = kName;
        made.pNext = nullptr;
        made.szOsFile += static_cast<int>(sizeof(RecordedFile));
        made.xOpen = openFile;
        made.xDelete = removeFile;
        return made;
    }();
    sqlite3_vfs_register(&vfs, 0);
    recorded().clear();
    engines::sqlite::SqliteHandle::setFileSystem(kName);
}

RecordingFiles::~RecordingFiles() {
    engines::sqlite::SqliteHandle::setFileSystem(nullptr);
}

void RecordingFiles::mark() {
    if (!recorded().empty() && recorded().back().kind != FileEvent::Kind::Mark)
        recorded().push_back({FileEvent::Kind::Mark, {}});
}

const std::vector<FileEvent>& RecordingFiles::events() {
    return recorded();
}

ReplayedFiles::ReplayedFiles(const Files& files) {
    for (const auto& [name, content] : files)
        m_files[name] = {content, content, {}};
}

void ReplayedFiles::apply(const FileEvent& event) {
    switch (event.kind) {
        case FileEvent::Kind::Create:
            m_files[event.file] = {{}, {}, {}, false};
            break;
        case FileEvent::Kind::Write:
        case FileEvent::Kind::Truncate:
            applyTo(m_files[event.file].seen, event);
            m_files[event.file].pending.push_back(event);
            break;
        case FileEvent::Kind::Sync: {
            State& file = m_files[event.file];
            for (const FileEvent& change : file.pending)
                applyTo(file.flushed, change);
            file.pending.clear();
            file.nameIsSafe = true;
            break;
        }
        case FileEvent::Kind::Remove:
            if (event.offset != 0)
                m_files.erase(event.file);
            else
                m_files[event.file].removed = true;
            break;
        case FileEvent::Kind::Mark:
            break;
    }
}

ReplayedFiles::Files ReplayedFiles::seen() const {
    Files files;
    for (const auto& [name, file] : m_files)
        if (!file.removed)
            files[name] = file.seen;
    return files;
}

ReplayedFiles::Files ReplayedFiles::flushed() const {
    Files files;
    for (const auto& [name, file] : m_files)
        files[name] = file.flushed;
    return files;
}

ReplayedFiles::Files ReplayedFiles::afterPowerLoss(std::mt19937& random) const {
    Files files;
    for (const auto& [name, file] : m_files) {
        if ((file.removed || !file.nameIsSafe) && random() % 2 == 0)
            continue;
        QByteArray content = file.flushed;
        const unsigned fate = random() % 4;
        if (fate == 1) {
            const size_t some = random() % (file.pending.size() + 1);
            for (size_t i = 0; i < some; ++i)
                applyTo(content, file.pending[i]);
        } else if (fate > 1) {
            for (const FileEvent& change : file.pending) {
                if (change.kind == FileEvent::Kind::Write)
                    applyTorn(content, change, random);
                else if (random() % 2 == 0)
                    applyTo(content, change);
            }
        }
        files[name] = content;
    }
    return files;
}

void writeFiles(const QString& folder, const ReplayedFiles::Files& files) {
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    for (const auto& [name, content] : files)
        writeFile(QDir(folder).filePath(name), content);
}

}  // namespace test
