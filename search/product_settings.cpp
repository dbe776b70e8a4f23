#include "search/product_settings.h"

#include "framework/core/settings_table.h"

namespace search {

namespace {

const QString kGeneralSection = QStringLiteral("ASETUKSIA");

bool isOn(const QString& value) {
    const QString text = value.trimmed();
    for (const char* on : {"1", "K", "true"}) {
        if (text.compare(QLatin1String(on), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

}  // namespace

ProductSettings readProductSettings(data::Database& database) {
    const auto value = [&](const char* key, const QString& fallback) {
        return framework::zavIniValue(database, kGeneralSection, QLatin1String(key), fallback);
    };
    ProductSettings settings;
    bool isNumber = false;
    const int store = value("Myymala", QStringLiteral("1")).trimmed().toInt(&isNumber);
    if (isNumber)
        settings.store = store;
    settings.purchasePricesHidden = isOn(value("OstoHintaEiNay", QStringLiteral("0")));
    settings.priceFormat = value("Tuotehintamuoto", QStringLiteral("#######.##"));
    settings.webShopInUse = webShopInUse(database);
    return settings;
}

bool webShopInUse(data::Database& database) {
    return isOn(framework::zavIniValue(database, QStringLiteral("VERKKOKAUPPA"),
                                       QStringLiteral("Kaytossa"), QStringLiteral("0")));
}

}  // namespace search
