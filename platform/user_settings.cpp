#include "platform/user_settings.h"

#include <QStandardPaths>

namespace platform {

QString userSettingsFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Taksavaihe");
}

std::unique_ptr<QSettings> userSettings() {
#ifdef Q_OS_WIN
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       QStringLiteral("Taksavaihe"), QStringLiteral("Ikkunat"));
#else
    return std::make_unique<QSettings>(userSettingsFolder() + QStringLiteral("/ikkunat.ini"),
                                       QSettings::IniFormat);
#endif
}

}  // namespace platform
