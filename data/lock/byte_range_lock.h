#pragma once

#include <cstdint>
#include <filesystem>

namespace data {

/// Exclusive byte-range locks of the operating system on one file, which is made when missing. They
/// exclude every other ByteRangeLock on the file, in this process too, and vanish with the object
/// and with the process.
class ByteRangeLock {
  public:
    /// True where locked ranges merge and split freely; false where a range can only be unlocked
    /// as it was locked, and where an own range may not be locked again.
    static const bool kRangesMerge;

    /// @throws std::filesystem::filesystem_error when the file cannot be opened for writing.
    explicit ByteRangeLock(const std::filesystem::path& file);
    ~ByteRangeLock();
    ByteRangeLock(const ByteRangeLock&) = delete;
    ByteRangeLock& operator=(const ByteRangeLock&) = delete;

    /// @return false when somebody else holds a part of the range. Does not wait.
    /// @throws std::system_error for anything else.
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
