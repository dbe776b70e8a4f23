#pragma once

#include <optional>
#include <vector>

#include "platform/ini_file.h"
#include "search/grid_column.h"

namespace search {

/// A search window's saved layout, one section of "FORMS.INI" per window: the shown columns with
/// order and widths, the window's size, the ordering of the rows. A plain value.
struct FormLayout {
    /// All columns of the window in order; `visible` are those in the layout.
    std::vector<GridColumn> columns = {};
    std::optional<int> width = {};
    std::optional<int> height = {};
    std::optional<int> order = {};  ///< index in the list of keys
};

/// Applies the saved layout to the window's columns: saved ones first in the saved order, then the
/// others, hidden. Unknown names, malformed numbers and sizes too small for a window are ignored;
/// without a saved column the defaults stay.
FormLayout readLayout(const platform::IniFile& file, const QString& section,
                      std::vector<GridColumn> columns);

/// Replaces the saved layout. Without a height the saved height stays.
void writeLayout(platform::IniFile& file, const QString& section, const FormLayout& layout);

}  // namespace search
