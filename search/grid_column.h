#pragma once

#include <QColor>
#include <QString>
#include <functional>
#include <optional>

#include "search/grid_row.h"

namespace search {

/// One column of a search grid: a field of the table, or a computed column.
struct GridColumn {
    QString field;  ///< a field's name; a computed column's own name (FORMS.INI knows it by this)
    QString title;  ///< empty: the field's name
    int width = 0;  ///< pixels; 0: by the field's size
    bool visible = true;
    /// The shown text. Empty function: the field's display text. A computed column has one.
    std::function<QString(const GridRow&)> text = {};
    bool alignRight = false;  ///< for computed columns; number fields always are

    const QString& heading() const { return title.isEmpty() ? field : title; }
};

struct CellColours {
    std::optional<QColor> background;
    std::optional<QColor> text;
};

}  // namespace search
