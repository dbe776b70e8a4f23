#pragma once

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// SQL statements that count what a run would change, without reading the rows.

/// Counts the rows of a query: its statement with count(*) in place of the columns, without order.
/// Precondition: one SELECT that reads tables, without GROUP BY.
QString countQuery(const QString& query);

/// Rows of open sales orders that are converted.
QString salesOrderRowCount(const ChangeDefinition& definition);
/// Rows of open purchase orders that are converted.
QString purchaseOrderRowCount(const ChangeDefinition& definition);

}  // namespace vatchange
