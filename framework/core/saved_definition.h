#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

namespace framework {

/// A saved definition: control names and their values, as in the file.
struct SavedDefinition {
    QString name;
    QString description;            ///< key "Selite"
    QMap<QString, QString> values;  ///< control name -> value; look up through value()
    QStringList removed = {};       ///< keys that a save takes out of the file
    int repeatedLine = 0;  ///< line of the file on which its name stands again, unread; 0 if none

    /// The value of a control; its name ignores case.
    std::optional<QString> value(const QString& control) const {
        if (const auto exact = values.constFind(control); exact != values.constEnd())
            return *exact;
        for (auto it = values.constBegin(); it != values.constEnd(); ++it) {
            if (it.key().compare(control, Qt::CaseInsensitive) == 0)
                return *it;
        }
        return std::nullopt;
    }
};

}  // namespace framework
