#pragma once

#include <QString>

#include "search/grid_row.h"
#include "search/product_lookups.h"
#include "search/product_settings.h"

namespace search {

/// Texts of the product window's computed columns.
class ProductTexts {
  public:
    ProductTexts(data::Database& database, ProductSettings settings);

    /// While off, stock columns are empty and no stock is read.
    void setStockShown(bool shown) { m_stockShown = shown; }
    bool stockShown() const { return m_stockShown; }

    QString productGroup(const GridRow& product);
    QString mainGroup(const GridRow& product);
    QString subGroup(const GridRow& product);
    QString supplier(const GridRow& product);

    /// Stock in the current store; empty without a stock record.
    QString balance(const GridRow& product);
    QString ordered(const GridRow& product);
    QString reserved(const GridRow& product);
    QString free(const GridRow& product);
    QString situation(const GridRow& product);
    QString shelfPlaces(const GridRow& product);  ///< also if stock is not shown

    QString priceWithoutVat(const GridRow& product);
    /// Purchase prices are empty if hidden by the settings or by the product.
    QString lastPurchasePrice(const GridRow& product);
    QString averagePurchasePrice(const GridRow& product);
    QString purchasePriceWithoutVat(const GridRow& product);

    ProductLookups& lookups() { return m_lookups; }
    const ProductSettings& settings() const { return m_settings; }
    /// Sets new settings and clears the lookups.
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
