#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "engines/data_names.h"

namespace engines::shops {

/// A thread that makes calls which may never come back: a driver that waits for a server gone
/// silent cannot be stopped from outside. The caller waits for each call, to its time limit; then
/// the thread is abandoned with what the call holds, and ends when the call does.
class GuardedThread {
  public:
    GuardedThread();
    ~GuardedThread();
    GuardedThread(const GuardedThread&) = delete;
    GuardedThread& operator=(const GuardedThread&) = delete;

    /// Runs `job` and waits for its end; what it throws is thrown here. Whatever the job touches
    /// has to be held by it. @return false when the time is over: the job goes on alone, and no
    /// further one can be run.
    bool run(std::function<void()> job, std::chrono::milliseconds limit);

    bool isAbandoned() const { return m_abandoned; }

  private:
    struct Desk;
    static void work(const std::shared_ptr<Desk>& desk);

    std::shared_ptr<Desk> m_desk;
    std::thread m_thread;
    bool m_abandoned = false;
};

}  // namespace engines::shops
