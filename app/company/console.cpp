#include "app/company/console.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <cstdio>
#endif

namespace company {

#ifdef Q_OS_WIN

namespace {

bool given(DWORD which) {
    const HANDLE handle = GetStdHandle(which);
    return handle != nullptr && handle != INVALID_HANDLE_VALUE;
}

}  // namespace

Console::Console() {
    const bool output = given(STD_OUTPUT_HANDLE);
    const bool error = given(STD_ERROR_HANDLE);
    if ((!output || !error) && AttachConsole(ATTACH_PARENT_PROCESS)) {
        if (!output)
            std::freopen("CONOUT$", "w", stdout);
        if (!error)
            std::freopen("CONOUT$", "w", stderr);
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
Console::~Console() = default;

#endif

}  // namespace company
