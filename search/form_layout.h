#pragma once

#include <optional>
#include <vector>

#include "platform/ini_file.h"
#include "search/grid_column.h"

namespace search {

/// What "FORMS.INI" keeps of a search window, each in a section of its own: the shown columns with
/// their order and widths, the window's size, the chosen order of the rows. A plain value.
struct FormLayout {
    /// All of the window's columns in their order; `visible` are those that the layout lists.
    std::vector<GridColumn> columns = {};
    std::optional<int> width = {};
    std::optional<int> height = {};
    std::optional<int> order = {};  ///< place in the list of keys
};

/// The saved layout on top of the window's own columns: the saved ones first, in the saved order,
/// the others behind them, hidden. Names that the window does not have, and numbers that are none
/// or too small for a window, are passed over; without a saved column the window's own stay.
FormLayout readLayout(const platform::IniFile& file, const QString& section,
                      std::vector<GridColumn> columns);

/// Replaces the saved layout. Without a height the saved one stays.
void writeLayout(platform::IniFile& file, const QString& section, const FormLayout& layout);

}  // namespace search
