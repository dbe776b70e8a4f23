#pragma once

#include <QWidget>

namespace framework {

/// Puts a window where the person at this machine had it last, and remembers where it stands when
/// it is hidden, in the user's settings under `name`. A place that no screen shows any more is
/// moved onto one. Nothing is read or written where nobody sees the window, and nothing in an
/// unattended run. @return true when a place was remembered.
bool rememberPlace(QWidget& window, const QString& name);

}  // namespace framework
