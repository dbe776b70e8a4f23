#pragma once

#include <QLibrary>
#include <QString>
#include <QStringList>
#include <memory>

#include "engines/data_names.h"

namespace engines::shops {

/// Operations of the shops' engine's call interface.
enum Operation : quint16 {
    kOpen = 0,
    kClose = 1,
    kInsert = 2,
    kUpdate = 3,
    kDelete = 4,
    kGetEqual = 5,
    kGetNext = 6,
    kGetPrevious = 7,
    kGetGreater = 8,
    kGetGreaterOrEqual = 9,
    kGetLess = 10,
    kGetLessOrEqual = 11,
    kGetFirst = 12,
    kGetLast = 13,
    kStat = 15,
    kEndTransaction = 20,
    kAbortTransaction = 21,
    kGetPosition = 22,
    kGetDirect = 23,
    kStepNext = 24,
    kStop = 25,
    kVersion = 26,
    kUnlock = 27,
    kReset = 28,
    kStepFirst = 33,
    kGetNextExtended = 36,
    kGetPreviousExtended = 37,
    kBeginConcurrentTransaction = 1019
};

/// Added to a read operation to lock the record. With a wait lock the engine waits without limit;
/// with a no-wait lock it returns "locked" at once.
enum LockBias : quint16 {
    kSingleWait = 100,
    kSingleNoWait = 200,
    kMultipleWait = 300,
    kMultipleNoWait = 400
};

inline constexpr int kPositionBlockSize = 128;
inline constexpr int kKeyBufferSize = 255;
inline constexpr int kClientIdSize = 16;

/// Statuses that some callers treat as normal.
enum Status : int {
    kOk = 0,
    kInvalidOperation = 1,
    kKeyNotFound = 4,
    kInvalidFileName = 11,
    kEndOfFile = 9,
    kFileNotFound = 12,
    kDataBufferTooShort = 22,
    kInvalidRecordAddress = 43,
    kInvalidKeyPath = 44,
    kInvalidOwner = 51,
    kRejectCountReached = 60,
    kWorkSpaceTooSmall = 61,
    kDescriptorIncorrect = 62,
    kFilterLimitReached = 64,
    kDeadlock = 78,
    kConflict = 80,
    kLostPosition = 82,
    kRecordLocked = 84,
    kFileLocked = 85,
    kExtendedBufferTooSmall = 97,
    kDatabaseNameNotFound = 172,
    kWrongUri = 175
};

/// The shops' engine's client library. Never unloaded, since an abandoned call may still run in it.
class CallLibrary {
  public:
    /// The setting that selects another library, for messages.
    static constexpr char kSetting[] = "Engine/ClientLibrary";

    /// Loads `library` (a name or a path); if empty, the first of defaultNames() found.
    /// @throws DataError(NoConnection) for `company`, with the names tried.
    static std::shared_ptr<const CallLibrary> load(const QString& library, const QString& company);

    /// The library's names on this platform.
    static QStringList defaultNames();

    /// Makes one call. `length`: of the data buffer, in and out. The key buffer has kKeyBufferSize
    /// bytes.
    int call(quint16 operation, void* positionBlock, void* data, quint32& length, void* key,
             int keyNumber, void* clientId) const;

    QString fileName() const { return m_library.fileName(); }

  private:
    explicit CallLibrary(const QString& library) : m_library(library) {}
    bool resolve();

    QLibrary m_library;
    QFunctionPointer m_call = nullptr;
};

}  // namespace engines::shops
