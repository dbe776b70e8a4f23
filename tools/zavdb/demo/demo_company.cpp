#include "tools/zavdb/demo/demo_company.h"

#include "tools/zavdb/demo/fill_tables.h"

namespace tools::demo {

void fill(data::Database& database, const Options& options, const Progress& progress) {
    const Facts facts(options);
    for (auto* part : {fillBaseTables, fillProducts, fillStoreTables, fillPriceTables,
                       fillSalesOrders, fillPurchaseOrders})
        part(database, facts, progress);
}

}  // namespace tools::demo
