#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "engines/data_names.h"
#include "engines/shops/sql_tokens.h"

/// Rewriting steps of the dialects. Malformed statements stay unchanged; the server refuses them.
namespace engines::shops {

bool returnsRows(const SqlTokens& tokens);

/// Removes trailing semicolons, blanks and comments.
void dropEnd(SqlTokens& tokens);

/// "select top N ..." at the statement's beginning becomes "select ... LIMIT N".
void topToLimit(SqlTokens& tokens);

/// round() and floor() in doubles, halves away from zero, and decimal literals as doubles.
void expandRounding(SqlTokens& tokens);

/// Fixes the join order of a query with subqueries to the order written.
void keepOrderOfTables(SqlTokens& tokens);

/// Rewrites comparisons and assignments of dates for a database whose empty date is NULL; the empty
/// date sorts first. @return for each token whether it is a date parameter.
QList<bool> datesToNull(SqlTokens& tokens, const std::function<bool(const QString&)>& isDateColumn);

}  // namespace engines::shops
