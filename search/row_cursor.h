#pragma once

#include <optional>
#include <vector>

#include "search/search_grid.h"
#include "search/table_model.h"

namespace search {

/// The current row of a search grid, and the record table positioned on its record. Calls read the
/// table: @throws data::DataError.
class RowCursor {
  public:
    /// All must outlive it; the grid shows the model and the model the table.
    RowCursor(SearchGrid& grid, TableModel& model, data::TtbTable& table)
        : m_grid(grid), m_model(model), m_table(table) {}

    int row() const { return m_grid.currentIndex().row(); }
    /// Makes a row current (clamped to the existing rows), selects and shows it.
    void goTo(int row);
    /// As goTo() with the row of a record, or the next one shown; else the first row.
    void goTo(const std::optional<data::StoredRecord>& record);

    /// Moves the table to a row's record. @return false, leaving the table where it was, if the row
    /// is not known yet or its record is gone.
    bool placeTable(int row);
    /// The table's current record.
    std::optional<data::StoredRecord> record() const;

    /// Makes rows that became visible known.
    void wantVisible();
    /// Shows the result of the model's recheck; the current row stays at its position on screen.
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
