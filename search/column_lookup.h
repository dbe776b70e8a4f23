#pragma once

#include <QString>

namespace search {

/// Where the shown texts of a column come from when they are looked up in another table.
struct ColumnLookup {
    QString localField;  ///< field of the browsed table that holds the key ("RYHMA")
    QString table;       ///< "TRYHMA"
    QString keyField;    ///< "Nro"
    QString shownField;  ///< "Nimi"
    /// The column is a stored number with a meaning of its own ("LasAsNimi"): only texts of digits
    /// and "-" are looked up, others are compared with the field.
    bool digitsOnly = false;
};

/// The condition for all records whose lookup shows a text that begins with `name` (case ignored):
/// walks the lookup table of the current company and names the keys found.
/// @throws data::DataError when the table cannot be read.
QString lookupExpression(const ColumnLookup& lookup, const QString& name);

}  // namespace search
