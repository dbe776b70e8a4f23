#pragma once

#include <vector>

#include "search/grid_column.h"
#include "search/product_texts.h"

namespace search {

/// The columns of the product window: the most used first, then the other fields of the table
/// (`tableFields`, in their order), then the computed ones. `texts` must outlive them.
std::vector<GridColumn> productGrid(std::vector<GridColumn> tableFields, ProductTexts& texts);

}  // namespace search
