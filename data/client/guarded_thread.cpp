#include "data/client/guarded_thread.h"

#include <QSemaphore>
#include <exception>
#include <utility>

namespace data::client {

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
