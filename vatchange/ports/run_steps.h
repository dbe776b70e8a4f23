#pragma once

namespace vatchange {

/// The steps of a run, in their order.
enum class RunStep {
    CustomerPrices,
    Campaigns,
    RecurringInvoices,
    QuantityDiscounts,
    ProductGroups,
    StorePrices,
    Products,
    SalesOrders,
    PurchaseOrders,
    ProductCodes,
    Verification
};

/// A step that a run is going to make.
struct PlannedStep {
    RunStep step;
    double seconds;  ///< that it takes by estimate; only their proportions count
};

}  // namespace vatchange
