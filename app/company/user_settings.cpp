#include "app/company/user_settings.h"

#include <QStandardPaths>

namespace company {

QString userSettingsFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Taksavaihe");
}

std::unique_ptr<QSettings> userSettings() {
    return std::make_unique<QSettings>(userSettingsFolder() + QStringLiteral("/ikkunat.ini"),
                                       QSettings::IniFormat);
}

}  // namespace company
