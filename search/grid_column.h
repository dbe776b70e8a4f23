#pragma once

#include <QColor>
#include <QString>
#include <functional>
#include <optional>

#include "search/record_row.h"

namespace search {

/// One column of a search grid: a field of the table, or a computed column.
struct GridColumn {
    QString field;  ///< a field's name; a computed column's own name (FORMS.INI knows it by this)
    QString title;  ///< empty: the field's name
    int width = 0;  ///< pixels; 0: by the field's size
    bool visible = true;
    /// The shown text. Empty function: the field's display text. A computed column has one.
    std::function<QString(const RecordRow&)> text = {};
    bool alignRight = false;  ///< for computed columns; number fields always are
};

/// Where the shown texts of a column come from when they are looked up in another table.
struct ColumnLookup {
    QString localField;  ///< field of the browsed table that holds the key ("RYHMA")
    QString table;       ///< "TRYHMA"
    QString keyField;    ///< "Nro"
    QString shownField;  ///< "Nimi"
    /// The column itself is a stored number with another meaning of its own: texts that hold other
    /// characters than digits and "-" are compared with the field, not looked up ("LasAsNimi").
    bool digitsOnly = false;
};

struct CellColours {
    std::optional<QColor> background;
    std::optional<QColor> text;
};

}  // namespace search
