#pragma once

#include "vatchange/run/key_records.h"
#include "vatchange/run/row_source.h"

namespace vatchange {

/// A step that changes the rows of one dependent price table. Its rows hold the key columns, the
/// amount columns and what the texts need, in this order.
struct DependentStep {
    PriceTable table;
    StepRows rows;
    QString update;  ///< statement that changes the rows of a key
    QStringList keyParameters;
    QStringList amountParameters;
    bool sharesKeys = false;  ///< several rows may have the same key
    /// The column of TUOTE by which a row's products are found, and its value's place in the row.
    QString productColumn = QStringLiteral("numero");
    size_t productValue = 0;

    QString begin;   ///< log line before the rows are read
    QString status;  ///< empty: none
    QString header;  ///< log line after the rows are read; empty: none
    QString what;    ///< in the run's counts
    QString lost;    ///< begins the log line of a row that another program changed
    bool logsRows = true;
    bool logsCount = false;

    std::function<QString(const data::KeyValues& row)> rowStatus = {};
    std::function<void(const data::KeyValues& row)> changed = {};  ///< after a row was changed
    std::function<std::vector<AmountChange>(const Amounts& old)> convert;
    std::function<QString(const data::KeyValues& row, const std::vector<AmountChange>& changes)>
        line;

    data::KeyValues keyOf(const data::KeyValues& row) const;
    Amounts amountsOf(const data::KeyValues& row) const;
};

DependentStep customerPriceStep(const RunContext& run);
DependentStep campaignStep(const RunContext& run);
DependentStep recurringInvoiceStep(const RunContext& run);
DependentStep quantityDiscountStep(const RunContext& run);

/// The steps that the definition asks for.
std::vector<DependentStep> dependentSteps(const RunContext& run);
/// The rows of the store price step.
StepRows storePriceRows(const RunContext& run);

/// Runs a step. @throws data::DataError; rows changed before stay changed.
void convertDependentRows(RunContext& run, const DependentStep& step);

}  // namespace vatchange
