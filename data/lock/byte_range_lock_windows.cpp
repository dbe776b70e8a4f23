#include "data/lock/byte_range_lock.h"

#ifdef _WIN32

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <system_error>

namespace data {

namespace {

OVERLAPPED placeOf(std::int64_t offset) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

std::error_code lastError() {
    return std::error_code(static_cast<int>(::GetLastError()), std::system_category());
}

}  // namespace

const bool ByteRangeLock::kRangesMerge = false;

ByteRangeLock::ByteRangeLock(const std::filesystem::path& file)
    : m_handle(::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (m_handle == INVALID_HANDLE_VALUE)
        throw std::filesystem::filesystem_error("cannot open the lock file", file, lastError());
}

ByteRangeLock::~ByteRangeLock() {
    ::CloseHandle(m_handle);
}

bool ByteRangeLock::tryLock(std::int64_t offset, std::int64_t length) {
    OVERLAPPED place = placeOf(offset);
    if (::LockFileEx(m_handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0,
                     static_cast<DWORD>(length & 0xFFFFFFFF), static_cast<DWORD>(length >> 32),
                     &place) != 0)
        return true;
    const DWORD error = ::GetLastError();
    if (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING)
        return false;
    throw std::system_error(lastError(), "record lock");
}

void ByteRangeLock::unlock(std::int64_t offset, std::int64_t length) noexcept {
    OVERLAPPED place = placeOf(offset);
    ::UnlockFileEx(m_handle, 0, static_cast<DWORD>(length & 0xFFFFFFFF),
                   static_cast<DWORD>(length >> 32), &place);
}

}  // namespace data

#endif
