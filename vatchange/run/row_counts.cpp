#include "vatchange/run/row_counts.h"

#include "data/sql/uni_query.h"
#include "vatchange/rules/count_queries.h"
#include "vatchange/rules/dependent_statements.h"
#include "vatchange/rules/selection.h"
#include "vatchange/rules/statements.h"

namespace vatchange {

namespace {

QStringList groupCounts(const ChangeDefinition& definition) {
    QStringList statements;
    for (const char* column : {"VERO", "ALV2", "OSTOVERO"}) {
        statements += QStringLiteral("select count(*) as rows_found from TRYHMA where %1 = %2")
                          .arg(QLatin1String(column))
                          .arg(definition.sourceClass) +
                      groupRangeCondition(definition);
    }
    return statements;
}

}  // namespace

std::vector<RowCount> rowCounts(const ChangeDefinition& definition) {
    const QString condition = selectionCondition(definition);
    std::vector<RowCount> counts;
    const auto add = [&counts](bool on, RunStep step, const QString& what,
                               const QStringList& statements) {
        if (on)
            counts.push_back({step, what, statements});
    };
    add(definition.customerPriceLists, RunStep::CustomerPrices,
        QStringLiteral("Asiakashinnastojen rivit"),
        {countQuery(customerPriceQuery(condition, definition))});
    add(definition.campaigns, RunStep::Campaigns, QStringLiteral("Kampanjarivit"),
        {countQuery(campaignQuery(condition, definition))});
    add(definition.recurringInvoicing, RunStep::RecurringInvoices,
        QStringLiteral("Toistuvaislaskutuksen rivit"),
        {countQuery(recurringInvoiceQuery(condition))});
    add(definition.quantityDiscounts, RunStep::QuantityDiscounts, QStringLiteral("Määräalennukset"),
        {countQuery(quantityDiscountQuery(condition, definition))});
    add(definition.products, RunStep::ProductGroups, QStringLiteral("Tuoteryhmien alv-kentät"),
        groupCounts(definition));
    add(definition.products && !storePriceAssignments(definition, 1.0).isEmpty(),
        RunStep::StorePrices, QStringLiteral("Myymälähintojen rivit"),
        {countQuery(storePriceQuery({definition.sourceClass}))});
    add(definition.products, RunStep::Products, QStringLiteral("Tuotteet"),
        {countQuery(productQuery(condition))});
    add(definition.salesOrders, RunStep::SalesOrders, QStringLiteral("Myyntitilausten rivit"),
        {salesOrderRowCount(definition)});
    add(definition.purchaseOrders, RunStep::PurchaseOrders, QStringLiteral("Ostotilausten rivit"),
        {purchaseOrderRowCount(definition)});
    return counts;
}

qint64 countRows(data::Database& database, const RowCount& count) {
    data::TUniQuery query(&database);
    if (count.step == RunStep::StorePrices) {
        query.sql().setText(kStoreTableQuery);
        query.open();
        if (query.recordCount() == 0)
            return 0;
        query.close();
    }
    qint64 rows = 0;
    for (const QString& statement : count.statements) {
        query.sql().setText(statement);
        query.open();
        rows += query.eof() ? 0 : query.fieldByName(QStringLiteral("rows_found")).asInteger();
        query.close();
    }
    return rows;
}

}  // namespace vatchange
