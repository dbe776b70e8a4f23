#include "search/row_cursor.h"

#include <QScrollBar>
#include <algorithm>
#include <set>
#include <utility>

namespace search {

void RowCursor::goTo(int row) {
    if (m_model.rowCount() == 0)
        return;
    row = std::clamp(row, 0, m_model.rowCount() - 1);
    m_model.want(row, row, true);
    row = std::min(row, m_model.rowCount() - 1);
    int column = m_grid.currentIndex().column();
    if (column < 0)
        column = std::max(m_grid.horizontalHeader()->logicalIndexAt(1), 0);
    const QModelIndex cell = m_model.index(row, column);
    m_grid.selectionModel()->setCurrentIndex(
        cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    const int horizontal = m_grid.horizontalScrollBar()->value();
    m_grid.scrollTo(cell);
    m_grid.horizontalScrollBar()->setValue(horizontal);
    placeTable(row);
}

void RowCursor::goTo(const std::optional<data::StoredRecord>& record) {
    goTo(std::max(record ? m_model.rowOf(*record) : 0, 0));
}

bool RowCursor::placeTable(int row) {
    const auto record = m_model.record(row);
    return record && m_table.gotoBookmark({record->id, record->bytes});
}

std::optional<data::StoredRecord> RowCursor::record() const {
    if (m_table.isEmpty())
        return std::nullopt;
    return data::StoredRecord{m_table.recordId(), m_table.recordBytes()};
}

void RowCursor::wantVisible() {
    const int first = m_grid.rowAt(0);
    if (first < 0)
        return;
    const int last = m_grid.rowAt(m_grid.viewport()->height() - 1);
    const bool mayRestart = m_grid.selectionModel()->selectedRows().size() <= 1;
    QScrollBar* bar = m_grid.verticalScrollBar();
    const int top = bar->value();
    if (!m_model.want(first, last < 0 ? m_model.rowCount() - 1 : last, mayRestart))
        return;
    // The rows were replaced, and the current one follows the scroll bar.
    const QSignalBlocker blocker(bar);
    goTo(first);
    bar->setValue(top);
}

void RowCursor::showRechecked() {
    QScrollBar* bar = m_grid.verticalScrollBar();
    const int above = row() - bar->value();
    const std::optional<data::StoredRecord> stay = record();
    m_model.showRechecked();
    const int row = std::max(stay ? m_model.rowOf(*stay) : 0, 0);
    goTo(row);
    bar->setValue(row - above);
}

std::vector<data::StoredRecord> RowCursor::selected() const {
    std::set<int> rows;
    for (const QItemSelectionRange& range : m_grid.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
    }
    std::vector<data::StoredRecord> records;
    for (const int row : rows) {
        if (auto record = m_model.record(row))
            records.push_back(std::move(*record));
    }
    return records;
}

int RowCursor::selectedCount() const {
    int count = 0;
    for (const QItemSelectionRange& range : m_grid.selectionModel()->selection())
        count += range.height();
    return count;
}

}  // namespace search
