#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "engines/data_names.h"
#include "engines/shops/sql_tokens.h"

/// What a dialect does to the pieces of a statement. Statements that make no sense stay as they
/// are, for the server to refuse.
namespace engines::shops {

bool returnsRows(const SqlTokens& tokens);

/// Takes off semicolons, blanks and comments at the end.
void dropEnd(SqlTokens& tokens);

/// "select top N ..." at the statement's beginning becomes "select ... LIMIT N".
void topToLimit(SqlTokens& tokens);

/// round() and floor() in doubles, halves away from zero, and decimal literals as doubles.
void spellOutRounding(SqlTokens& tokens);

/// A query with subqueries is told to join its tables in the order in which they stand.
void keepOrderOfTables(SqlTokens& tokens);

/// Dates compared with texts, and set, in a database whose empty date is NULL and sorts before all
/// others. @return for each token whether it is a parameter that stands for a date.
QList<bool> datesToNull(SqlTokens& tokens, const std::function<bool(const QString&)>& isDateColumn);

}  // namespace engines::shops
