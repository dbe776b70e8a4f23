#pragma once

#include <QString>
#include <optional>

#include "data/dictionary/field_cache_item.h"
#include "search/column_lookup.h"

/// Filter texts: what a dropped text becomes, and how the user's filter is combined with the
/// caller's. Pure functions.
namespace search {

/// What a record-by-record search looks for.
struct SearchText {
    QString text;
    bool anywhere = false;  ///< anywhere in the field; else at its start
};
/// A leading "*" of the dropped text, or a "#" at the start of the filter edit's text, matches
/// anywhere; the dropped text's first character is then removed.
SearchText asetaSuodatin(const QString& dropped, const QString& inEdit);

/// Whether a drop starts a record search whatever the column is.
bool isRecordSearch(const QString& dropped, bool onIndicator);

/// What a drop on a column does.
struct DropAction {
    enum class Kind {
        Filter,       ///< `text` becomes the user's filter
        Lookup,       ///< the column's lookup is searched for `text`
        RecordSearch  ///< the column has no field: its shown texts are searched
    };
    Kind kind = Kind::Filter;
    QString text = {};
};
/// The column that a text was dropped on.
struct DropTarget {
    QString field;                   ///< its name
    std::optional<data::Kind> kind;  ///< nothing: a computed column
    std::optional<ColumnLookup> lookup = {};
    std::optional<data::Kind> localKind = {};  ///< of the lookup's local field
};
DropAction dropAction(const QString& text, const DropTarget& target);

/// The parts of a dropped text.
struct DroppedText {
    QString op;     ///< leading "<", ">" and "=", at most ten; "=" if none
    QString value;  ///< the rest
};
DroppedText splitOperator(const QString& text);

/// A complete filter typed by the user: the text after a leading "!".
std::optional<QString> ownExpression(const QString& text);

/// Whether a text counts as a number: only "01234567890,.-+".
bool isNumericText(const QString& text);
/// Only digits and "-".
bool isDigitText(const QString& text);

/// The condition for a text dropped on a data field: a number on an integer field is not quoted;
/// anything else is, with "*" at the end for a string field, so that prefixes match.
QString dropExpression(const QString& field, data::Kind kind, const QString& text);

/// A condition on a quoted key value: one for each matching row of a lookup.
QString lookupTerm(const QString& field, const QString& key);

/// A condition that no record meets; the field is a text or a number.
QString noRecord(const QString& field);

/// The table's filter from base and user filter. While passive records are shown, the base filter
/// is left out except for its central store condition.
QString composedFilter(const QString& base, const QString& user, bool showPassive);

}  // namespace search
