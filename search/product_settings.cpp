#include "search/product_settings.h"

#include "framework/core/settings_table.h"
#include "search/lookup_cache.h"

namespace search {

namespace {

const QString kGeneralSection = QStringLiteral("ASETUKSIA");

}  // namespace

bool isSettingOn(const QString& text) {
    const QString value = text.trimmed();
    return !value.isEmpty() && value != QLatin1String("0") &&
           value.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0;
}

ProductSettings readProductSettings(data::Database& database) {
    const auto value = [&](const char* key, const QString& fallback) {
        return framework::zavIniValue(database, kGeneralSection, QLatin1String(key), fallback);
    };
    ProductSettings settings;
    bool isNumber = false;
    const int store = value("Myymala", QStringLiteral("1")).trimmed().toInt(&isNumber);
    if (isNumber)
        settings.store = store;
    settings.purchasePricesHidden = isSettingOn(value("OstoHintaEiNay", QStringLiteral("0")));
    settings.priceFormat = value("Tuotehintamuoto", QStringLiteral("#######.##"));
    settings.webShopInUse = webShopInUse(database);
    return settings;
}

QStringList priceLevelNames(data::Database& database) {
    constexpr int kPriceLevels = 9;
    LookupCache levels(database, QStringLiteral("HINTATASO"), 0, {QStringLiteral("nimi")});
    QStringList names;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const LookupCache::Row* row = levels.find({level});
        names.append(row == nullptr ? QString() : row->at(0).toString().trimmed());
    }
    return names;
}

bool webShopInUse(data::Database& database) {
    return isSettingOn(framework::zavIniValue(database, QStringLiteral("VERKKOKAUPPA"),
                                              QStringLiteral("Kaytossa"), QStringLiteral("0")));
}

}  // namespace search
