#include "framework/ui/control_values.h"

#include <QSignalBlocker>

#include "framework/ui/saved_control.h"

namespace framework {

namespace {

QMap<QString, QWidget*> savedControls(const QWidget& form) {
    QMap<QString, QWidget*> controls;
    for (QWidget* widget : form.findChildren<QWidget*>()) {
        if (!widget->objectName().isEmpty() && dynamic_cast<SavedControl*>(widget) != nullptr)
            controls.insert(widget->objectName(), widget);
    }
    return controls;
}

}  // namespace

QMap<QString, QString> controlValues(const QWidget& form) {
    QMap<QString, QString> values;
    const auto controls = savedControls(form);
    for (auto it = controls.begin(); it != controls.end(); ++it)
        values.insert(it.key(), dynamic_cast<const SavedControl*>(it.value())->savedValue());
    return values;
}

std::vector<UnreadableValue> setControlValues(QWidget& form, const SavedDefinition& definition,
                                              const QMap<QString, QString>& defaults) {
    std::vector<UnreadableValue> unreadable;
    const auto controls = savedControls(form);
    for (auto it = controls.begin(); it != controls.end(); ++it) {
        const QSignalBlocker silence(it.value());
        auto* control = dynamic_cast<SavedControl*>(it.value());
        const auto value = definition.value(it.key());
        if (value && control->setSavedValue(*value))
            continue;
        control->setSavedValue(defaults.value(it.key()));
        if (value)
            unreadable.push_back({it.key(), *value});
    }
    return unreadable;
}

}  // namespace framework
