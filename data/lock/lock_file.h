#pragma once

#include <QString>
#include <cstdint>

#include "data/lock/byte_range_lock.h"

namespace data {

/// A company's lock file: byte-range locks with errors that name the file. Byte 0 says that a run
/// is going on; what the other bytes stand for is the engine's business.
class LockFile {
  public:
    /// @throws DataError(ReadOnly, Io) naming the lock file.
    explicit LockFile(const QString& fileName);

    /// @return false when somebody else holds a part of the range. Does not wait.
    /// @throws DataError(Io).
    bool tryLock(std::int64_t offset, std::int64_t length);
    void unlock(std::int64_t offset, std::int64_t length) noexcept;

    /// Marks that a run is going on; calls nest. @return false when another process has done so.
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
