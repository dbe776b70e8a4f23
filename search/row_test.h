#pragma once

#include <functional>
#include <optional>

#include "data/table/tb_table.h"
#include "search/filter_expression.h"
#include "search/grid_column.h"

namespace search {

/// Whether a record belongs to a view. The bytes are valid only during the call.
using RowTest = data::TableFile::Visitor;

/// Tests records by a filter expression; empty if the expression is. The layout must outlive it.
/// @throws data::DataError(Syntax, NoSuchField)
RowTest expressionTest(const QString& expression, const data::RecordLayout& layout);

/// Tests records by the text that a column shows. With `bothNames` a search in "nimi" includes
/// "nimi2". The table must stay open.
RowTest columnTest(const data::TtbTable& table, const GridColumn& column, const SearchText& search,
                   bool bothNames);

/// Tells from a key's texts which records can pass a columnTest(); see TableFile::visitKeyTexts().
struct KeyTextTest {
    int key = 0;
    std::function<bool(QByteArrayView text)> accepts;
};
/// The test for columnTest() with the same arguments; nothing if no key begins with the column's
/// field.
std::optional<KeyTextTest> keyTextTest(data::TtbTable& table, const GridColumn& column,
                                       const SearchText& search, bool bothNames);

}  // namespace search
