#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// The program's parameters without its name, one list per process. A parameter is a switch if it
/// equals the switch's name, ignoring the case of a to z and taking a leading "-" for "/".
void setParameters(const QStringList& parameters);
const QStringList& parameters();
/// Whether a parameter is the switch of that name.
bool sameSwitch(const QString& parameter, const QString& name);
bool hasSwitch(const QString& name);            ///< anywhere
bool hasSwitchAfterFirst(const QString& name);  ///< anywhere except first

}  // namespace platform
