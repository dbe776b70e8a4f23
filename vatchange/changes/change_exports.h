#pragma once

#include <QIODevice>

#include "vatchange/changes/change_view.h"

namespace vatchange {

// Files for people and other programs: UTF-8 with a byte order mark, semicolons, decimal comma,
// CR LF. All throw platform::CsvError if the device cannot be written.

/// The rows of a view in its order, with the columns of the window. A text that a spreadsheet would
/// take for a formula gets an apostrophe before it.
/// @return false if `progress` cancelled.
bool writeSpreadsheet(const ChangeList& list, const ChangeView& view, QIODevice& output,
                      const ViewProgress& progress = {});

/// A changed price of a product. Of several runs: from before the first to after the last.
struct ListedPrice {
    int product = 0;  ///< index into the list's products
    int level = 0;    ///< 1..9
    double before = 0.0;
    double after = 0.0;
};
/// The changed prices by product, in the order of the run, and level. Without those that have been
/// taken back and those that end as they began.
std::vector<ListedPrice> listedPrices(const ChangeList& list);

enum class PriceListForm {
    Prices,   ///< a line for each price: number, name, level, old price, new price
    Products  ///< a line for each product: number, name, old and new price of each level
};
void writePriceList(const ChangeList& list, PriceListForm form, QIODevice& output);

}  // namespace vatchange
