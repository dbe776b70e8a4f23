#pragma once

#include <cstdint>
#include <filesystem>

namespace data {

/// Exclusive byte-range locks of the operating system on one file, created if missing. They also
/// exclude other ByteRangeLock objects of the same process, and end with the object or the process.
class ByteRangeLock {
  public:
    /// True if adjacent ranges merge and can be unlocked in parts (Linux); false if a range must be
    /// unlocked exactly as locked and cannot be locked twice (Windows).
    static const bool kRangesMerge;

    /// @throws std::filesystem::filesystem_error if the file cannot be opened for writing.
    explicit ByteRangeLock(const std::filesystem::path& file);
    ~ByteRangeLock();
    ByteRangeLock(const ByteRangeLock&) = delete;
    ByteRangeLock& operator=(const ByteRangeLock&) = delete;

    /// Does not wait. @return false if a part of the range is locked by another holder.
    /// @throws std::system_error for any other failure.
    bool tryLock(std::int64_t offset, std::int64_t length);
    void unlock(std::int64_t offset, std::int64_t length) noexcept;

  private:
#ifdef _WIN32
    void* m_handle = nullptr;
#else
    int m_descriptor = -1;
#endif
};

}  // namespace data
