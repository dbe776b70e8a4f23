#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// The program's parameters (without the program's name), kept process-wide. A switch is in the
/// list when one parameter equals it, case of a to z ignored; a leading "-" counts as "/".
void setParameters(const QStringList& parameters);
const QStringList& parameters();
/// Whether a parameter is the switch of that name.
bool sameSwitch(const QString& parameter, const QString& name);
bool hasSwitch(const QString& name);            ///< anywhere
bool hasSwitchAfterFirst(const QString& name);  ///< anywhere but in the first position

}  // namespace platform
