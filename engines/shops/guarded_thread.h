#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "engines/data_names.h"

namespace engines::shops {

/// A thread for calls that may never return: a driver that waits for a silent server cannot be
/// interrupted. The caller waits for each call up to a time limit, then abandons the thread with
/// whatever the call holds; the thread ends with the call.
class GuardedThread {
  public:
    GuardedThread();
    ~GuardedThread();
    GuardedThread(const GuardedThread&) = delete;
    GuardedThread& operator=(const GuardedThread&) = delete;

    /// Runs `job`, waits for it and rethrows its exception. The job must own everything that it
    /// uses. @return false on a timeout: the job continues alone and no other can run.
    bool run(std::function<void()> job, std::chrono::milliseconds limit);

    bool isAbandoned() const { return m_abandoned; }

  private:
    struct Shared;
    static void work(const std::shared_ptr<Shared>& shared);

    std::shared_ptr<Shared> m_shared;
    std::thread m_thread;
    bool m_abandoned = false;
};

}  // namespace engines::shops
