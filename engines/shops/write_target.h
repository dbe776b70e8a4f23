#pragma once

#include <QString>
#include <QStringList>
#include <map>
#include <optional>

#include "data/value.h"
#include "engines/data_names.h"

namespace engines::shops {

/// Table and effect of a writing statement, as needed by the run journal.
struct WriteTarget {
    enum class Kind { Update, Insert, Delete };
    Kind kind;
    QString table;  ///< without quotes
    /// Update, Delete: " where ..." with its parameters; empty: all rows.
    QString condition;
    QStringList conditionParameters;  ///< without the colon
    /// Insert: the columns (empty: all, in the table's order), and each column's value as written:
    /// a number, a quoted text, a parameter with its colon, or "null".
    QStringList columns;
    QStringList values;
};

/// @return nothing for a statement that returns rows. @throws DataError(Syntax) for other
/// statements that are not UPDATE, DELETE or INSERT ... VALUES.
std::optional<WriteTarget> writeTargetOf(const QString& sql);

/// The value of an insert's column, given the parameters' values by lower-case name.
Value insertedValue(const QString& written, const std::map<QString, Value>& parameters);

}  // namespace engines::shops
