#pragma once

#include <optional>
#include <vector>

#include "search/search_grid.h"
#include "search/table_model.h"

namespace search {

/// The current row of a search grid, and the record table that stands on its record. Calls read
/// the table: @throws data::DataError.
class RowCursor {
  public:
    /// All must live on; the grid shows the model and the model the table.
    RowCursor(SearchGrid& grid, TableModel& model, data::TtbTable& table)
        : m_grid(grid), m_model(model), m_table(table) {}

    int row() const { return m_grid.currentIndex().row(); }
    /// Makes a row current (bounded to the rows there are), selects and shows it.
    void goTo(int row);
    /// As goTo() with the row of a record, or the next one that is shown; else the first row.
    void goTo(const std::optional<data::StoredRecord>& record);

    /// Puts the table on a row's record. @return false, with the table where it was, when the row
    /// is not known yet or its record is gone.
    bool placeTable(int row);
    /// The record that the table stands on.
    std::optional<data::StoredRecord> record() const;

    /// After rows have come into sight: makes them known.
    void wantVisible();
    /// Shows what the model's recheck has found; the current row stays where it is seen.
    void showRechecked();

    /// The selected records, in the order of the rows.
    std::vector<data::StoredRecord> selected() const;
    int selectedCount() const;

  private:
    SearchGrid& m_grid;
    TableModel& m_model;
    data::TtbTable& m_table;
};

}  // namespace search
