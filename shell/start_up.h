#pragma once

#include <QApplication>
#include <QString>
#include <QStringList>

namespace shell {

/// Returns the text for "--help" or "--version"; empty without either.
QString commandLineAnswer(const QStringList& parameters);

/// Chooses the Qt platform unless one is set: an unattended start without a display runs offscreen.
/// Call before creating the application.
/// @return false, with the reason in `problem`, if a window is wanted and there is no display, or
/// if
/// "/KOEAJO" comes without "/E".
bool preparePlatform(const QStringList& parameters, QString& problem);

/// Starts the program and runs it. @return the exit status
int runProgram(QApplication& application);

}  // namespace shell
