#include "engines/shops/guarded_thread.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

#ifndef _WIN32
#include <csignal>
#endif

namespace engines::shops {

namespace {

// Writing to a closed connection should give the driver an error code, not SIGPIPE, which would end
// the program.
void ignoreBrokenConnections() {
#ifndef _WIN32
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
#endif
}

}  // namespace

// Shared between the two threads. The worker owns the contents while it has a job, the caller
// otherwise.
struct GuardedThread::Shared {
    std::mutex mutex;
    std::condition_variable changed;
    bool isGiven = false;
    bool isAbandoned = false;   // there will be no further job
    std::function<void()> job;  // empty: the thread is to end
    std::exception_ptr failure;

    void give(std::function<void()> next) {
        {
            const std::lock_guard lock(mutex);
            job = std::move(next);
            isGiven = true;
        }
        changed.notify_all();
    }
};

GuardedThread::GuardedThread()
    : m_shared(std::make_shared<Shared>()), m_thread([shared = m_shared] { work(shared); }) {}

GuardedThread::~GuardedThread() {
    if (m_abandoned)
        return;
    m_shared->give(nullptr);
    m_thread.join();
}

void GuardedThread::work(const std::shared_ptr<Shared>& shared) {
    ignoreBrokenConnections();
    std::unique_lock lock(shared->mutex);
    for (;;) {
        shared->changed.wait(lock, [&shared] { return shared->isGiven; });
        if (!shared->job)
            return;
        std::function<void()> job = std::exchange(shared->job, nullptr);
        lock.unlock();
        std::exception_ptr failure;
        try {
            job();
        } catch (...) {
            failure = std::current_exception();
        }
        job = nullptr;  // destroying what it owns may call the driver
        lock.lock();
        shared->failure = std::exchange(failure, nullptr);
        shared->isGiven = shared->isAbandoned;
        shared->changed.notify_all();
    }
}

bool GuardedThread::run(std::function<void()> job, std::chrono::milliseconds limit) {
    if (m_abandoned)
        return false;
    m_shared->give(std::move(job));
    std::unique_lock lock(m_shared->mutex);
    if (!m_shared->changed.wait_for(lock, limit, [this] { return !m_shared->isGiven; })) {
        m_abandoned = true;
        m_shared->isAbandoned = true;
        m_thread.detach();
        return false;
    }
    if (m_shared->failure)
        std::rethrow_exception(std::exchange(m_shared->failure, nullptr));
    return true;
}

}  // namespace engines::shops
