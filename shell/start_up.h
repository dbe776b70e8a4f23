#pragma once

#include <QApplication>
#include <QString>
#include <QStringList>

namespace shell {

/// The text of "--help" or "--version" when the parameters ask for one; empty otherwise.
QString answerWithoutWindows(const QStringList& parameters);

/// Chooses the platform where nothing chose one: an unattended start without a display runs
/// offscreen by itself. Before the application object is made. @return false, with the reason in
/// `problem`, when a window is wanted and there is no display.
bool preparePlatform(const QStringList& parameters, QString& problem);

/// Starts the program up, in its order, and runs it. @return the exit status.
int runProgram(QApplication& application);

}  // namespace shell
