#pragma once

#include <optional>

#include "search/lookup_cache.h"
#include "search/product_columns.h"

namespace search {

/// Data that the product window shows from other tables, read by key when a row needs it, and
/// cached.
class ProductLookups {
  public:
    explicit ProductLookups(data::Database& database);

    /// Names of groups and suppliers; empty if the key does not exist.
    QString productGroupName(qint64 number);
    QString mainGroupName(qint64 number);
    QString subGroupName(qint64 number);
    QString supplierName(const QString& code);
    /// Percent of a VAT class; 0 if there is no such class.
    double vatPercent(qint64 vatClass);
    /// The product's stock in a store; nothing without a stock record.
    std::optional<StockBalance> stock(int store, const QString& product);
    /// The product's shelf places in a store.
    QStringList shelfPlaces(int store, const QString& product);
    /// The product's kind (TuoteLaji); 0 if it has none.
    qint64 productKind(const QString& product);

    /// Clears the caches.
    void clear();

  private:
    LookupCache m_productGroups;
    LookupCache m_mainGroups;
    LookupCache m_subGroups;
    LookupCache m_suppliers;
    LookupCache m_vatClasses;
    LookupCache m_stock;
    LookupCache m_kinds;
};

}  // namespace search
