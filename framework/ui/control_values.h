#pragma once

#include <QMap>
#include <QString>
#include <QWidget>
#include <vector>

#include "framework/core/definition_store.h"

namespace framework {

/// A value of a saved definition that its control could not read; the control has its default.
struct UnreadableValue {
    QString control;
    QString value;
};

/// The values of all saved controls of a form, by object name.
QMap<QString, QString> controlValues(const QWidget& form);

/// Puts a definition into a form's saved controls: a control whose key is missing, or whose value
/// cannot be read, gets its default. No control tells of its change, so nothing else of the form
/// reacts. @return what could not be read, by control name.
std::vector<UnreadableValue> setControlValues(QWidget& form, const SavedDefinition& definition,
                                              const QMap<QString, QString>& defaults);

}  // namespace framework
