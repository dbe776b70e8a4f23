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

/// The engine's state of one open file between calls.
struct PositionBlock {
    alignas(8) std::array<char, kPositionBlockSize> bytes{};
};

/// One client of the shops' engine with its own files, locks and transactions; a program may have
/// several. Ends with a reset, which closes and unlocks everything. Calls run in a separate thread
/// and are abandoned at the time limit; the session is then lost.
class CallSession {
  public:
    /// Loads the library and requests the engine's version, to check that it responds.
    /// @throws DataError(NoConnection) for `company`.
    CallSession(const QString& company, const QString& library,
                std::chrono::milliseconds connectLimit, std::chrono::milliseconds callLimit);
    ~CallSession();
    CallSession(const CallSession&) = delete;
    CallSession& operator=(const CallSession&) = delete;

    /// Makes one call. The size of `data` is the buffer length sent; on return it is cut to the
    /// length returned. `key` is extended to kKeyBufferSize.
    /// @return the status. @throws DataError(NoConnection) naming `table` on a timeout or in a lost
    /// session.
    int call(quint16 operation, const std::shared_ptr<PositionBlock>& block, QByteArray& data,
             QByteArray& key, int keyNumber, const QString& table);

    /// True after a timeout or a status that ends the session.
    bool isLost() const { return m_lost; }

    /// Such as "15.10"; of the last component listed.
    const QString& version() const { return m_version; }

    /// How long to wait for locks of others.
    std::chrono::milliseconds lockWait{2000};

  private:
    struct Call;
    bool run(const std::shared_ptr<Call>& call, std::chrono::milliseconds limit);
    void queryVersion(const QString& company, std::chrono::milliseconds limit);

    std::shared_ptr<const CallLibrary> m_library;
    std::array<char, kClientIdSize> m_clientId{};
    GuardedThread m_thread;
    std::chrono::milliseconds m_callLimit;
    QString m_version;
    bool m_lost = false;
};

}  // namespace engines::shops
