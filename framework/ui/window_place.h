#pragma once

#include <QWidget>

namespace framework {

/// Restores a window's last place from the user's settings under `name`, and saves it when the
/// window is hidden. A place off all screens is moved onto one. Does nothing if nobody sees the
/// window or with "/E". @return true if a place was restored
bool rememberPlace(QWidget& window, const QString& name);

}  // namespace framework
