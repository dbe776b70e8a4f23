#pragma once

#include <QSettings>
#include <QString>
#include <memory>

namespace platform {

/// The user's settings folder of the program: "Taksavaihe" under $XDG_CONFIG_HOME (default
/// ~/.config), under the user's local application data on Windows. Need not exist.
QString userSettingsFolder();

/// The user's window sizes, positions and the like: "ikkunat.ini" of that folder; on Windows
/// "Software\Taksavaihe\Ikkunat" in the user's part of the registry, with the machine's part for
/// what the user's lacks. Never anything that belongs to a company. A damaged file reads as empty:
/// losing it costs nobody work.
std::unique_ptr<QSettings> userSettings();

}  // namespace platform
