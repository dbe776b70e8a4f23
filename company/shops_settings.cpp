#include "company/shops_settings.h"

#include <chrono>
#include <cmath>

namespace company {

namespace {

std::chrono::milliseconds secondsOf(const QString& setting, std::chrono::milliseconds usual) {
    constexpr double kMillisecondsPerSecond = 1000;
    bool ok = false;
    const double seconds = company::engineSetting(setting).toDouble(&ok);
    if (!ok || seconds <= 0)
        return usual;
    return std::chrono::milliseconds(std::llround(seconds * kMillisecondsPerSecond));
}

}  // namespace

engines::shops::ShopsDatabaseSettings shopsSettings(const Alias& alias) {
    engines::shops::ShopsDatabaseSettings settings;
    settings.name = alias.name;
    settings.folder = alias.physicalName;
    settings.ownerName = alias.ownerName;
    settings.server = alias.server;
    settings.clientLibrary = qEnvironmentVariable("TAKSAVAIHE_CLIENT_LIBRARY");
    if (settings.clientLibrary.isEmpty())
        settings.clientLibrary = engineSetting(QStringLiteral("ClientLibrary"));
    settings.dataSource = alias.dataSource;
    settings.userName = alias.userName;
    settings.password = alias.password;
    settings.odbcAttributes = alias.odbcAttributes;
    settings.connectLimit = secondsOf(QStringLiteral("ConnectSeconds"), settings.connectLimit);
    settings.statementLimit =
        secondsOf(QStringLiteral("StatementSeconds"), settings.statementLimit);
    return settings;
}

}  // namespace company
