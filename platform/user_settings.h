#pragma once

#include <QSettings>
#include <QString>
#include <memory>

namespace platform {

/// The program's settings folder of the user: "Taksavaihe" in $XDG_CONFIG_HOME (default ~/.config);
/// on Windows in the local application data. May not exist.
QString userSettingsFolder();

/// Window sizes, positions and the like: "ikkunat.ini" in that folder; on Windows
/// "Software\Taksavaihe\Ikkunat" in the user's registry, falling back to the machine's. Never
/// company data. A damaged file reads as empty, which costs no work.
std::unique_ptr<QSettings> userSettings();

}  // namespace platform
