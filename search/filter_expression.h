#pragma once

#include <QString>
#include <optional>

#include "data/dictionary/field_cache_item.h"

/// Texts of filters: what a dropped text becomes, and how it goes together with the caller's own
/// filter. Pure functions.
namespace search {

/// A dropped text taken apart.
struct DroppedText {
    QString op;     ///< leading "<", ">" and "=", at most ten; "=" when there is none
    QString value;  ///< the rest
};
DroppedText splitOperator(const QString& text);

/// A whole filter of the user's own: what follows a leading "!".
std::optional<QString> ownExpression(const QString& text);

/// Whether a text counts as a number: only "01234567890,.-+".
bool isNumericText(const QString& text);
/// Only digits and "-".
bool isDigitText(const QString& text);

/// The condition that a text dropped on a data field makes: a numeric text on an integer field is
/// compared unquoted, all else quoted, with "*" for a string field, so that beginnings match.
QString dropExpression(const QString& field, data::Kind kind, const QString& text);

/// A condition on a quoted key value, as lookups make one each matching row.
QString lookupTerm(const QString& field, const QString& key);

/// A condition on a text or number field that no record fulfils.
QString noRecord(const QString& field);

/// The table's filter: base and user filter, as passive records are hidden (`showPassive` false) or
/// shown. Shown, the base filter goes, but for its central store condition.
QString composedFilter(const QString& base, const QString& user, bool showPassive);

}  // namespace search
