#pragma once

#include <QMap>
#include <QString>
#include <vector>

#include "framework/core/saved_definition.h"
#include "vatchange/definition/definition_fields.h"

namespace vatchange {

/// Returns a field's value as written to the file, independent of the locale: check boxes 0 or 1,
/// decimal numbers in the shortest form that reads back to the same double, dates yyyy-mm-dd.
QString fieldText(const ChangeField& field, const ChangeDefinition& definition);

/// Whether the file keeps the spelling of a field's whole number as it was typed.
bool isWholeNumber(const ChangeField& field);

/// Sets a field from a text of the file. @return false, definition unchanged, if it is unreadable.
bool setFieldText(const ChangeField& field, const QString& text, ChangeDefinition& definition);

/// A saved value that could not be read; the definition has the default.
struct UnreadableValue {
    QString control;
    QString value;
};

struct DecodedDefinition {
    ChangeDefinition definition;
    std::vector<UnreadableValue> unreadable;  ///< in the order of the fields
    std::vector<QString> missing;  ///< controls without a key, likewise; not optional ones
};

/// Decodes a saved definition without the load rules. Missing keys and unreadable values leave the
/// defaults.
DecodedDefinition decodeDefinition(const framework::SavedDefinition& saved);

/// Returns the texts of all fields, by control; empty for an optional one that is off. A whole
/// number keeps its spelling in `typed` if that means the same number ("007", or empty for 0).
QMap<QString, QString> encodeDefinition(const ChangeDefinition& definition,
                                        const framework::SavedDefinition& typed = {});

}  // namespace vatchange
