#include "platform/end_request.h"

#include <QtGlobal>
#include <atomic>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <csignal>
#endif

namespace platform {

namespace {

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free);  // set in a signal handler

#ifdef Q_OS_WIN

// Windows ends the process when the handler returns, at the latest after five seconds.
constexpr DWORD kTimeToStopMs = 10000;

BOOL WINAPI consoleEvent(DWORD event) {
    if (event != CTRL_CLOSE_EVENT && event != CTRL_LOGOFF_EVENT && event != CTRL_SHUTDOWN_EVENT)
        return FALSE;
    requestEnd();
    Sleep(kTimeToStopMs);
    return TRUE;
}

#else

void endSignal(int) {
    requestEnd();
}

#endif

}  // namespace

void watchEndRequests() {
#ifdef Q_OS_WIN
    SetConsoleCtrlHandler(consoleEvent, TRUE);
#else
    struct sigaction action = {};
    action.sa_handler = endSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
#endif
}

void requestEnd() {
    requested = true;
}

bool endRequested() {
    return requested;
}

}  // namespace platform
