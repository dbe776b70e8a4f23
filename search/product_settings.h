#pragma once

#include <QStringList>

#include "data/engine/engine.h"

namespace search {

/// Settings of the product and group search windows, see docs/settings.md.
struct ProductSettings {
    int store = 1;  ///< the store whose stock is shown
    bool purchasePricesHidden = false;
    QString priceFormat;  ///< "Tuotehintamuoto"
    bool webShopInUse = false;
};

ProductSettings readProductSettings(data::Database& database);

/// The names of the nine price levels; empty where the company has none.
QStringList priceLevelNames(data::Database& database);

/// A boolean setting: on unless empty, "0" or "false".
bool isSettingOn(const QString& text);

/// Whether the company has a web shop.
bool webShopInUse(data::Database& database);

}  // namespace search
