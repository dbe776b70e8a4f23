#pragma once

#include <QString>

#include "search/product_lookups.h"
#include "search/product_settings.h"
#include "search/record_row.h"

namespace search {

/// The texts of the product window's columns that are more than a stored field.
class ProductTexts {
  public:
    ProductTexts(data::Database& database, ProductSettings settings);

    /// Stock columns are empty, and no stock is read, while this is off.
    void setStockShown(bool shown) { m_stockShown = shown; }
    bool stockShown() const { return m_stockShown; }

    QString productGroup(const RecordRow& product);
    QString mainGroup(const RecordRow& product);
    QString subGroup(const RecordRow& product);
    QString supplier(const RecordRow& product);

    /// Stock of the current store; empty for a product that the store has never had.
    QString balance(const RecordRow& product);
    QString ordered(const RecordRow& product);
    QString reserved(const RecordRow& product);
    QString free(const RecordRow& product);
    QString situation(const RecordRow& product);
    QString shelfPlaces(const RecordRow& product);  ///< also while stock is not shown

    QString priceWithoutVat(const RecordRow& product);
    /// Purchase prices are empty when the settings hide all, or the product hides its own.
    QString lastPurchasePrice(const RecordRow& product);
    QString averagePurchasePrice(const RecordRow& product);
    QString purchasePriceWithoutVat(const RecordRow& product);

    ProductLookups& lookups() { return m_lookups; }
    const ProductSettings& settings() const { return m_settings; }
    /// Reads settings and lookups afresh from now on.
    void reread(ProductSettings settings);

  private:
    std::optional<StockBalance> stock(const RecordRow& product);
    QString quantity(const RecordRow& product, double (*part)(const StockBalance&));
    bool purchasePriceShown(const RecordRow& product) const;

    ProductSettings m_settings;
    ProductLookups m_lookups;
    bool m_stockShown = true;
};

}  // namespace search
