#pragma once

#include <QString>
#include <QStringList>

namespace search {

/// Lookup of a column's shown texts in another table.
struct ColumnLookup {
    QString localField;  ///< field of the browsed table that holds the key ("RYHMA")
    QString table;       ///< "TRYHMA"
    QString keyField;    ///< "Nro"
    QString shownField;  ///< "Nimi"
    /// The column is a stored text of its own ("ToimAsNimi"): only texts of digits and "-" are
    /// looked up, as numbers of the other table; others are compared with the column's field.
    bool digitsOnly = false;
};

/// The condition for all records whose lookup shows a text beginning with `name` (case ignored):
/// reads the lookup table of the current company and lists the keys found.
/// @throws data::DataError if the table cannot be read.
struct LookupFilter {
    QString expression;
    QStringList names;  ///< the texts found; empty: the expression accepts no record
};
LookupFilter lookupFilter(const ColumnLookup& lookup, const QString& name);

}  // namespace search
