#pragma once

#include <QString>

namespace search {

/// Lookup of a column's shown texts in another table.
struct ColumnLookup {
    QString localField;  ///< field of the browsed table that holds the key ("RYHMA")
    QString table;       ///< "TRYHMA"
    QString keyField;    ///< "Nro"
    QString shownField;  ///< "Nimi"
    /// The column is a stored number with a meaning of its own ("LasAsNimi"): only texts of digits
    /// and "-" are looked up, others are compared with the field.
    bool digitsOnly = false;
};

/// The condition for all records whose lookup shows a text beginning with `name` (case ignored):
/// reads the lookup table of the current company and lists the keys found.
/// @throws data::DataError if the table cannot be read.
QString lookupExpression(const ColumnLookup& lookup, const QString& name);

}  // namespace search
