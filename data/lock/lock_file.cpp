#include "data/lock/lock_file.h"

#include <chrono>
#include <system_error>
#include <thread>

#include "data/error.h"
#include "data/system_path.h"

namespace data {

namespace {

constexpr std::int64_t kRunByte = 0;
constexpr std::chrono::milliseconds kPause{20};

std::filesystem::path pathOf(const QString& fileName) {
    return std::filesystem::path(systemPath(fileName).toStdU16String());
}

}  // namespace

LockFile::LockFile(const QString& fileName) try : m_lock(pathOf(fileName)), m_fileName(fileName) {
} catch (const std::filesystem::filesystem_error& error) {
    const bool refused = error.code() == std::errc::permission_denied ||
                         error.code() == std::errc::read_only_file_system;
    throw DataError(refused ? ErrorKind::ReadOnly : ErrorKind::Io, fileName,
                    QString::fromStdString(error.code().message()), error.code().value());
}

bool LockFile::tryLock(std::int64_t offset, std::int64_t length) {
    try {
        return m_lock.tryLock(offset, length);
    } catch (const std::system_error& error) {
        throw DataError(ErrorKind::Io, m_fileName, QString::fromStdString(error.code().message()),
                        error.code().value());
    }
}

void LockFile::unlock(std::int64_t offset, std::int64_t length) noexcept {
    m_lock.unlock(offset, length);
}

bool LockFile::beginRun() {
    // runGoesOn() of another process holds the byte for a moment
    for (int tries = 2; m_runs == 0 && !tryLock(kRunByte, 1); std::this_thread::sleep_for(kPause)) {
        if (--tries == 0)
            return false;
    }
    ++m_runs;
    return true;
}

bool LockFile::runGoesOn() {
    if (m_runs > 0)
        return false;
    if (!tryLock(kRunByte, 1))
        return true;
    unlock(kRunByte, 1);
    return false;
}

void LockFile::endRun() {
    if (m_runs > 0 && --m_runs == 0)
        unlock(kRunByte, 1);
}

}  // namespace data
