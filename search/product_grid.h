#pragma once

#include <QStringList>
#include <vector>

#include "search/grid_column.h"
#include "search/product_texts.h"

namespace search {

/// The columns of the product window: the most used first, then the other fields of the table
/// (`tableFields`, in their order), then the computed ones. About a dozen are shown. The prices
/// have the names of their levels (`priceNames`, from level 1; empty: none). `texts` must outlive
/// them.
std::vector<GridColumn> productGrid(std::vector<GridColumn> tableFields,
                                    const QStringList& priceNames, ProductTexts& texts);

}  // namespace search
