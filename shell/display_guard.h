#pragma once

#include <QString>

namespace shell {

/// For messages about a missing display: how the program runs without one.
extern const QString kWithoutDisplay;

/// During its life a display that cannot be reached ends the program with exit status 2 and one
/// Finnish line on standard error; the toolkit would abort with several English ones. Other
/// complaints of the toolkit are held back and written at the end of its life. Create it just
/// before the application. Does nothing on Windows, which always has a display.
class DisplayGuard {
  public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;
};

}  // namespace shell
