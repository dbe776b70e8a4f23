#pragma once

#include <QtGlobal>

namespace platform {

/// Standard output and error as UTF-8 for as long as it lives. On Windows a console gets the UTF-8
/// code page and its own back afterwards, and a program of windows, which starts without a console,
/// writes to that of the program that started it where nothing else was given to it. Elsewhere
/// nothing has to be done.
class Console {
  public:
    Console();
#ifdef Q_OS_WIN
    ~Console();
#else
    ~Console() = default;
#endif
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

#ifdef Q_OS_WIN
  private:
    unsigned int m_codePage = 0;  // of the console before; 0 when there is none
#endif
};

}  // namespace platform
