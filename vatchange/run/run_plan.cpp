#include "vatchange/run/run_plan.h"

#include <algorithm>

#include "vatchange/journal/row_list.h"
#include "vatchange/run/row_counts.h"

namespace vatchange {

namespace {

// Microseconds of a row, measured on the embedded engine. Only their proportions count.
constexpr double kDependentRow = 100;
constexpr double kGroupField = 20;
constexpr double kStoreRow = 50;
constexpr double kProduct = 180;
constexpr double kOrderRow = 150;
constexpr double kVerifiedRow = 12;
constexpr double kCheckedProduct = 2;
constexpr double kLeast = 20'000;  // of any step

double rowCost(RunStep step) {
    switch (step) {
        case RunStep::ProductGroups:
            return kGroupField;
        case RunStep::StorePrices:
            return kStoreRow;
        case RunStep::Products:
            return kProduct;
        case RunStep::SalesOrders:
        case RunStep::PurchaseOrders:
            return kOrderRow;
        default:
            return kDependentRow;
    }
}

/// The table whose rows the journal lists; empty for other steps.
QString listedTable(RunStep step) {
    switch (step) {
        case RunStep::CustomerPrices:
            return QStringLiteral("ASALE");
        case RunStep::Campaigns:
            return QStringLiteral("KAMPPANJA");
        case RunStep::RecurringInvoices:
            return QStringLiteral("VAKIOLASKUTUS");
        case RunStep::QuantityDiscounts:
            return QStringLiteral("MAARAALE");
        case RunStep::StorePrices:
            return QStringLiteral("MYYMALAHINNAT");
        default:
            return {};
    }
}

/// The rows that the run has listed, otherwise those that the database counts.
qint64 rowsOf(RunContext& run, const RowCount& count) {
    const QString table = listedTable(count.step);
    if (run.journal && !table.isEmpty()) {
        if (const auto list = RowList::open(*run.journal, run.result.run, table))
            return list->count();
    }
    return countRows(run.database, count);
}

}  // namespace

std::vector<PlannedStep> plannedSteps(RunContext& run) {
    std::vector<PlannedStep> steps;
    qint64 all = 0;
    const auto add = [&steps](RunStep step, double microseconds) {
        steps.push_back({step, std::max(microseconds, kLeast) / 1e6});
    };
    for (const RowCount& count : rowCounts(run.definition)) {
        qint64 rows = 0;
        try {
            rows = rowsOf(run, count);
        } catch (const data::DataError&) {
            rows = 0;  // the step itself reports the error
        }
        all += rows;
        add(count.step, static_cast<double>(rows) * rowCost(count.step));
    }
    if (run.definition.checkProductCodes)
        add(RunStep::ProductCodes, static_cast<double>(all) * kCheckedProduct);
    if (run.journal)
        add(RunStep::Verification, static_cast<double>(all) * kVerifiedRow);
    return steps;
}

}  // namespace vatchange
