#pragma once

#include <QColor>
#include <QString>
#include <functional>
#include <optional>

#include "search/grid_row.h"

namespace search {

/// One column of a search grid: a field of the table, or a computed column.
struct GridColumn {
    QString field;  ///< a field's name, or the computed column's own; used in FORMS.INI
    QString title;  ///< empty: the field's name
    int width = 0;  ///< pixels; 0: by the field's size
    bool visible = true;
    /// The shown text; required for a computed column. Default: the field's display text.
    std::function<QString(const GridRow&)> text = {};
    bool alignRight = false;  ///< computed columns only; number fields always are

    const QString& heading() const { return title.isEmpty() ? field : title; }
};

struct CellColours {
    std::optional<QColor> background;
    std::optional<QColor> text;
};

}  // namespace search
