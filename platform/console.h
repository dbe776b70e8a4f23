#pragma once

#include <QtGlobal>

namespace platform {

/// Makes standard output and error UTF-8 during its life. Windows: sets the console's code page to
/// UTF-8 and restores it; a GUI program, which starts without a console, writes to its parent's
/// console unless the streams are redirected. Does nothing elsewhere.
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
    unsigned int m_codePage = 0;  // to restore; 0 without a console
#endif
};

}  // namespace platform
