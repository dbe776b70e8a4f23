#pragma once

#include <QWidget>

#include "framework/core/saved_definition.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// Reads the definition from a form's controls, which are found by the names of the field table.
/// Precondition: the form has all of them.
ChangeDefinition definitionInControls(const QWidget& form);

/// Shows a definition. Signals are blocked, so nothing else of the form reacts. Whole numbers keep
/// their spelling in `typed` if it means the same number.
void showInControls(const QWidget& form, const ChangeDefinition& definition,
                    const framework::SavedDefinition& typed = {});

/// Returns the controls' values as written to a file, whole numbers as typed.
QMap<QString, QString> textsInControls(const QWidget& form);

}  // namespace vatchange
