#pragma once

#include "tools/zavdb/demo/demo_company.h"
#include "tools/zavdb/demo/facts.h"

// The tables of the demo company by subject; each call fills its tables and reports them.
namespace tools::demo {

/// VAT classes, groups, price levels, customer groups, suppliers, settings.
void fillBaseTables(data::Database& database, const Facts& facts, const Progress& progress);
/// Products and the tables keyed by product number.
void fillProducts(data::Database& database, const Facts& facts, const Progress& progress);
void fillStoreTables(data::Database& database, const Facts& facts, const Progress& progress);
/// Customers, price lists, campaigns, quantity discounts, recurring invoices.
void fillPriceTables(data::Database& database, const Facts& facts, const Progress& progress);
void fillSalesOrders(data::Database& database, const Facts& facts, const Progress& progress);
void fillPurchaseOrders(data::Database& database, const Facts& facts, const Progress& progress);

}  // namespace tools::demo
