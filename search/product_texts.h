#pragma once

#include <QString>

#include "search/grid_row.h"
#include "search/product_lookups.h"
#include "search/product_settings.h"

namespace search {

/// The texts of the product window's columns that are more than a stored field.
class ProductTexts {
  public:
    ProductTexts(data::Database& database, ProductSettings settings);

    /// Stock columns are empty, and no stock is read, while this is off.
    void setStockShown(bool shown) { m_stockShown = shown; }
    bool stockShown() const { return m_stockShown; }

    QString productGroup(const GridRow& product);
    QString mainGroup(const GridRow& product);
    QString subGroup(const GridRow& product);
    QString supplier(const GridRow& product);

    /// Stock of the current store; empty for a product that the store has never had.
    QString balance(const GridRow& product);
    QString ordered(const GridRow& product);
    QString reserved(const GridRow& product);
    QString free(const GridRow& product);
    QString situation(const GridRow& product);
    QString shelfPlaces(const GridRow& product);  ///< also while stock is not shown

    QString priceWithoutVat(const GridRow& product);
    /// Purchase prices are empty when the settings hide all, or the product hides its own.
    QString lastPurchasePrice(const GridRow& product);
    QString averagePurchasePrice(const GridRow& product);
    QString purchasePriceWithoutVat(const GridRow& product);

    ProductLookups& lookups() { return m_lookups; }
    const ProductSettings& settings() const { return m_settings; }
    /// Reads settings and lookups afresh from now on.
    void reread(ProductSettings settings);

  private:
    std::optional<StockBalance> stock(const GridRow& product);
    QString quantity(const GridRow& product, double (*part)(const StockBalance&));
    bool purchasePriceShown(const GridRow& product) const;

    ProductSettings m_settings;
    ProductLookups m_lookups;
    bool m_stockShown = true;
};

}  // namespace search
