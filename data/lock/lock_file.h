#pragma once

#include <QString>
#include <cstdint>

#include "data/lock/byte_range_lock.h"

namespace data {

/// A company's lock file; errors name the file. Byte 0 marks a run in progress; the engine defines
/// the other bytes.
class LockFile {
  public:
    /// @throws DataError(ReadOnly, Io) naming the lock file.
    explicit LockFile(const QString& fileName);

    /// Does not wait. @return false if another process holds a part of the range.
    /// @throws DataError(Io).
    bool tryLock(std::int64_t offset, std::int64_t length);
    void unlock(std::int64_t offset, std::int64_t length) noexcept;

    /// Marks a run in progress; calls nest. @return false if another process has a run in progress.
    bool beginRun();
    void endRun();
    /// Whether another process is in a run.
    bool runGoesOn();

  private:
    ByteRangeLock m_lock;
    QString m_fileName;
    int m_runs = 0;
};

}  // namespace data
