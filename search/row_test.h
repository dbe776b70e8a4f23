#pragma once

#include "data/table/tb_table.h"
#include "search/filter_expression.h"
#include "search/grid_column.h"

namespace search {

/// Whether a record belongs to a view. The bytes live only during the call.
using RowTest = data::TableFile::Visitor;

/// Tests records by a filter expression; empty when the expression is. The layout must live on.
/// @throws data::DataError(Syntax, NoSuchField)
RowTest expressionTest(const QString& expression, const data::RecordLayout& layout);

/// Tests records by what a column shows of them. With `bothNames` a search of "nimi" also looks at
/// "nimi2". The table must live on, open.
RowTest columnTest(const data::TtbTable& table, const GridColumn& column, const SearchText& search,
                   bool bothNames);

}  // namespace search
