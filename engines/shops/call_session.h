#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <chrono>
#include <memory>

#include "engines/data_names.h"
#include "engines/shops/call_interface.h"
#include "engines/shops/guarded_thread.h"

namespace engines::shops {

/// What the engine keeps of one open file between calls.
struct PositionBlock {
    alignas(8) std::array<char, kPositionBlockSize> bytes{};
};

/// One client of the shops' engine: its files, locks and transactions are its own, also beside
/// another session of the same program. Ends with a reset, which closes and unlocks everything.
/// Calls are made in a thread of their own and given up at the time limit; the session is lost
/// then.
class CallSession {
  public:
    /// Loads the library and asks the engine for its version, which tells whether it is there.
    /// @throws DataError(NoConnection) for `company`.
    CallSession(const QString& company, const QString& library,
                std::chrono::milliseconds connectLimit, std::chrono::milliseconds callLimit);
    ~CallSession();
    CallSession(const CallSession&) = delete;
    CallSession& operator=(const CallSession&) = delete;

    /// One call. `data` is sent whole, with room for what comes back: its size is the buffer length
    /// sent, and it is cut to the length returned. `key` is widened to the key buffer's size.
    /// @return the status. @throws DataError(NoConnection) naming `table` when the time is over or
    /// the session lost.
    int call(quint16 operation, const std::shared_ptr<PositionBlock>& block, QByteArray& data,
             QByteArray& key, int keyNumber, const QString& table);

    /// The engine cannot be reached through this session any more.
    bool isLost() const { return m_lost; }

    /// "15.10" and the like; of the last component that answered.
    const QString& version() const { return m_version; }

    /// How long locks of others are waited for.
    std::chrono::milliseconds lockWait{2000};

  private:
    struct Call;
    bool run(const std::shared_ptr<Call>& call, std::chrono::milliseconds limit);
    void askVersion(const QString& company, std::chrono::milliseconds limit);

    std::shared_ptr<const CallLibrary> m_library;
    std::array<char, kClientIdSize> m_clientId{};
    GuardedThread m_thread;
    std::chrono::milliseconds m_callLimit;
    QString m_version;
    bool m_lost = false;
};

}  // namespace engines::shops
