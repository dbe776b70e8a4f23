#include "search/grid_header.h"

#include <algorithm>
#include <utility>

namespace search {

namespace {

// Pixels.
constexpr int kNarrowest = 40;
constexpr int kWidest = 260;
constexpr int kPadding = 14;
constexpr int kSortMark = 14;
// Width in characters of columns other than text fields.
constexpr int kComputedSize = 14;
constexpr int kNumberSize = 9;

}  // namespace

GridHeader::GridHeader(SearchGrid& grid, TableModel& model, Allowed allowed)
    : m_grid(grid), m_model(model), m_allowed(std::move(allowed)) {}

int GridHeader::defaultWidth(int place) const {
    const QFontMetrics metrics(m_grid.font());
    const GridColumn& column = m_model.column(place);
    const data::TField* field = m_model.field(place);
    const bool isText = field != nullptr && field->kind() == data::Kind::String;
    const int characters = column.text ? kComputedSize : (isText ? field->size() : kNumberSize);
    return std::clamp(std::max(characters * metrics.horizontalAdvance(QLatin1Char('0')),
                               metrics.horizontalAdvance(column.heading()) + kSortMark) +
                          kPadding,
                      kNarrowest, kWidest);
}

void GridHeader::apply() {
    for (int i = 0; i < m_model.columnCount(); ++i) {
        const GridColumn& column = m_model.column(i);
        m_grid.setColumnHidden(i, !column.visible || !m_allowed(column.field));
        m_grid.horizontalHeader()->resizeSection(i,
                                                 column.width > 0 ? column.width : defaultWidth(i));
    }
}

std::vector<GridColumn> GridHeader::columns() const {
    const QHeaderView& header = *m_grid.horizontalHeader();
    std::vector<GridColumn> columns;
    for (int visual = 0; visual < header.count(); ++visual) {
        const int i = header.logicalIndex(visual);
        GridColumn& column = columns.emplace_back(m_model.column(i));
        if (m_allowed(column.field))
            column.visible = !m_grid.isColumnHidden(i);
        if (header.sectionSize(i) > 0)
            column.width = header.sectionSize(i);
    }
    return columns;
}

std::vector<GridColumn> GridHeader::allowed(std::vector<GridColumn> columns) const {
    std::erase_if(columns, [this](const GridColumn& column) { return !m_allowed(column.field); });
    return columns;
}

void GridHeader::arrange(const std::vector<GridColumn>& columns) {
    QHeaderView& header = *m_grid.horizontalHeader();
    int place = 0;
    for (const GridColumn& column : columns) {
        const int i = m_model.columnOf(column.field);
        if (i < 0)
            continue;
        header.moveSection(header.visualIndex(i), place++);
        m_grid.setColumnHidden(i, !column.visible);
        if (column.visible)
            header.resizeSection(i, column.width > 0 ? column.width : defaultWidth(i));
    }
}

}  // namespace search
