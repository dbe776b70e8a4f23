#include "data/lock/byte_range_lock.h"

#ifndef _WIN32

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

// Open-file-description locks belong to the open file, not the process: two connections of one
// process exclude each other, and closing one does not release the other's locks.

namespace data {

namespace {

struct flock rangeOf(short type, std::int64_t offset, std::int64_t length) {
    struct flock range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = offset;
    range.l_len = length;
    return range;
}

}  // namespace

const bool ByteRangeLock::kRangesMerge = true;

ByteRangeLock::ByteRangeLock(const std::filesystem::path& file)
    : m_descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0664)) {
    if (m_descriptor < 0)
        throw std::filesystem::filesystem_error("cannot open the lock file", file,
                                                std::error_code(errno, std::system_category()));
}

ByteRangeLock::~ByteRangeLock() {
    ::close(m_descriptor);
}

bool ByteRangeLock::tryLock(std::int64_t offset, std::int64_t length) {
    struct flock range = rangeOf(F_WRLCK, offset, length);
    if (::fcntl(m_descriptor, F_OFD_SETLK, &range) == 0)
        return true;
    if (errno == EAGAIN || errno == EACCES)
        return false;
    throw std::system_error(errno, std::system_category(), "record lock");
}

void ByteRangeLock::unlock(std::int64_t offset, std::int64_t length) noexcept {
    struct flock range = rangeOf(F_UNLCK, offset, length);
    ::fcntl(m_descriptor, F_OFD_SETLK, &range);
}

}  // namespace data

#endif
