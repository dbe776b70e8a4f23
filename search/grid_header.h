#pragma once

#include <functional>
#include <vector>

#include "search/search_grid.h"
#include "search/table_model.h"

namespace search {

/// The columns of a search grid in its header: shown or hidden, moved, resized.
class GridHeader {
  public:
    /// Whether a column may be shown at all now.
    using Allowed = std::function<bool(const QString& field)>;

    /// Grid and model must outlive it; the grid shows the model.
    GridHeader(SearchGrid& grid, TableModel& model, Allowed allowed);

    /// Shows the model's columns with their widths; without one, a width by field and title.
    void apply();
    /// The columns as arranged by the user. A column that is currently not allowed keeps the
    /// visibility it had when applied.
    std::vector<GridColumn> columns() const;
    /// The columns that may be shown now, of those given.
    std::vector<GridColumn> allowed(std::vector<GridColumn> columns) const;
    /// Shows columns of the grid in this order with these widths; the rows stay.
    void arrange(const std::vector<GridColumn>& columns);

  private:
    int defaultWidth(int column) const;

    SearchGrid& m_grid;
    TableModel& m_model;
    Allowed m_allowed;
};

}  // namespace search
