#include "data/client/guarded_thread.h"

#include <QSemaphore>
#include <exception>
#include <utility>

#ifndef _WIN32
#include <csignal>
#endif

namespace data::client {

namespace {

// A driver that writes to a server which hung up is to be told so by its call; the signal for it
// would end the program.
void ignoreBrokenConnections() {
#ifndef _WIN32
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
#endif
}

}  // namespace

// What the two threads hand to each other; the semaphores order the access.
struct GuardedThread::Desk {
    QSemaphore given;
    QSemaphore done;
    std::function<void()> job;  // empty: the thread is to end
    std::exception_ptr failure;
};

GuardedThread::GuardedThread()
    : m_desk(std::make_shared<Desk>()), m_thread([desk = m_desk] { work(desk); }) {}

GuardedThread::~GuardedThread() {
    if (m_abandoned)
        return;
    m_desk->job = nullptr;
    m_desk->given.release();
    m_thread.join();
}

void GuardedThread::work(const std::shared_ptr<Desk>& desk) {
    ignoreBrokenConnections();
    for (;;) {
        desk->given.acquire();
        if (!desk->job)
            return;
        desk->failure = nullptr;
        try {
            desk->job();
        } catch (...) {
            desk->failure = std::current_exception();
        }
        desk->job = nullptr;
        desk->done.release();
    }
}

bool GuardedThread::run(std::function<void()> job, std::chrono::milliseconds limit) {
    if (m_abandoned)
        return false;
    m_desk->job = std::move(job);
    m_desk->given.release();
    if (!m_desk->done.tryAcquire(1, limit)) {
        m_abandoned = true;
        m_thread.detach();
        m_desk->given.release();  // it finds no job after this one, and ends
        return false;
    }
    if (m_desk->failure)
        std::rethrow_exception(std::exchange(m_desk->failure, nullptr));
    return true;
}

}  // namespace data::client
