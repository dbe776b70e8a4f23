#pragma once

#include <QMap>
#include <QString>
#include <vector>

#include "framework/core/saved_definition.h"
#include "vatchange/definition/definition_fields.h"

namespace vatchange {

/// A field's value as the definition file has it, whatever the user's locale: check boxes 0 or 1,
/// decimal numbers in the shortest form that reads back to the same double, dates yyyy-mm-dd.
QString fieldText(const ChangeField& field, const ChangeDefinition& definition);

/// Reads a text of the file. @return false, with the definition unchanged, when it cannot be read.
bool setFieldText(const ChangeField& field, const QString& text, ChangeDefinition& definition);

/// A value of a saved definition that could not be read; the definition has the default.
struct UnreadableValue {
    QString control;
    QString value;
};

struct DecodedDefinition {
    ChangeDefinition definition;
    std::vector<UnreadableValue> unreadable;  ///< in the order of the fields
    std::vector<QString> missing;             ///< controls without a key, likewise
};

/// The value of a saved definition as it stands: no rule of loading is applied. A key that is
/// missing, or whose value cannot be read, leaves its default.
DecodedDefinition decodeDefinition(const framework::SavedDefinition& saved);

/// The texts of all fields, by control. A whole number keeps the spelling that it has in `typed`
/// where that means the same number ("007", or nothing for 0).
QMap<QString, QString> encodeDefinition(const ChangeDefinition& definition,
                                        const framework::SavedDefinition& typed = {});

}  // namespace vatchange
