#pragma once

#include <QWidget>

#include "framework/core/saved_definition.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// The definition that a form's controls say. Controls are found by the names of the field table;
/// the form has to have all of them.
ChangeDefinition definitionInControls(const QWidget& form);

/// Shows a definition. No control tells of its change, so nothing else of the form reacts. Whole
/// numbers are shown as `typed` spells them where it means the same number.
void showInControls(const QWidget& form, const ChangeDefinition& definition,
                    const framework::SavedDefinition& typed = {});

/// What the controls say as a definition file has it, whole numbers as they were typed.
QMap<QString, QString> textsInControls(const QWidget& form);

}  // namespace vatchange
