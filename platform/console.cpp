#include "platform/console.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <cstdio>
#endif

namespace platform {

#ifdef Q_OS_WIN

namespace {

bool given(DWORD which) {
    const HANDLE handle = GetStdHandle(which);
    return handle != nullptr && handle != INVALID_HANDLE_VALUE;
}

// A stream that cannot be redirected stays discarded.
bool redirectToConsole(FILE* stream) {
    return std::freopen("CONOUT$", "w", stream) != nullptr;
}

}  // namespace

Console::Console() {
    const bool output = given(STD_OUTPUT_HANDLE);
    const bool error = given(STD_ERROR_HANDLE);
    if ((!output || !error) && AttachConsole(ATTACH_PARENT_PROCESS)) {
        if (!output)
            redirectToConsole(stdout);
        if (!error)
            redirectToConsole(stderr);
    }
    m_codePage = GetConsoleOutputCP();
    if (m_codePage != 0)
        SetConsoleOutputCP(CP_UTF8);
}

Console::~Console() {
    if (m_codePage == 0)
        return;
    std::fflush(nullptr);
    SetConsoleOutputCP(m_codePage);
}

#else

Console::Console() = default;

#endif

}  // namespace platform
