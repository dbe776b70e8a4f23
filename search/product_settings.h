#pragma once

#include <QString>

#include "data/engine.h"

namespace search {

/// What the search windows of products and groups read from the settings table; docs/settings.md
/// tells the administrator of each.
struct ProductSettings {
    int store = 1;  ///< the store whose stock is shown
    bool purchasePricesHidden = false;
    QString priceFormat;  ///< "Tuotehintamuoto"
    bool webShopInUse = false;
};

ProductSettings readProductSettings(data::Database& database);

/// What the text of a yes-or-no setting means.
bool isSettingOn(const QString& text);

/// Whether the company sells in a web shop.
bool webShopInUse(data::Database& database);

}  // namespace search
