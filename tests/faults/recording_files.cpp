#include "tests/faults/recording_files.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>
#include <stdexcept>

#include "engines/sqlite/sqlite_handle.h"

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

// Everything else is forwarded. Without xFetch: files are not mapped.
const sqlite3_io_methods kMethods = [] {
    sqlite3_io_methods methods = {};
    methods.iVersion = 2;
    methods.xClose = closeFile;
    methods.xRead = [](sqlite3_file* file, void* to, int count, sqlite3_int64 offset) {
        return realOf(file)->pMethods->xRead(realOf(file), to, count, offset);
    };
    methods.xWrite = writeFile;
    methods.xTruncate = truncateFile;
    methods.xSync = syncFile;
    methods.xFileSize = [](sqlite3_file* file, sqlite3_int64* size) {
        return realOf(file)->pMethods->xFileSize(realOf(file), size);
    };
    methods.xLock = [](sqlite3_file* file, int kind) {
        return realOf(file)->pMethods->xLock(realOf(file), kind);
    };
    methods.xUnlock = [](sqlite3_file* file, int kind) {
        return realOf(file)->pMethods->xUnlock(realOf(file), kind);
    };
    methods.xCheckReservedLock = [](sqlite3_file* file, int* held) {
        return realOf(file)->pMethods->xCheckReservedLock(realOf(file), held);
    };
    methods.xFileControl = [](sqlite3_file* file, int what, void* argument) {
        return realOf(file)->pMethods->xFileControl(realOf(file), what, argument);
    };
    methods.xSectorSize = [](sqlite3_file* file) {
        return realOf(file)->pMethods->xSectorSize(realOf(file));
    };
    methods.xDeviceCharacteristics = [](sqlite3_file* file) {
        return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
    };
    methods.xShmMap = [](sqlite3_file* file, int page, int size, int extend, void volatile** at) {
        return realOf(file)->pMethods->xShmMap(realOf(file), page, size, extend, at);
    };
    methods.xShmLock = [](sqlite3_file* file, int offset, int count, int flags) {
        return realOf(file)->pMethods->xShmLock(realOf(file), offset, count, flags);
    };
    methods.xShmBarrier = [](sqlite3_file* file) {
        realOf(file)->pMethods->xShmBarrier(realOf(file));
    };
    methods.xShmUnmap = [](sqlite3_file* file, int remove) {
        return realOf(file)->pMethods->xShmUnmap(realOf(file), remove);
    };
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
    for (const auto& [name, content] : files) {
        QFile file(QDir(folder).filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            throw std::runtime_error("test file cannot be written");
    }
}

}  // namespace test
