#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace platform {

/// A program that the operating system's scheduler starts once.
struct ScheduledTask {
    QString id;           ///< letters, digits and "-"; names the task in the scheduler
    QString description;  ///< shown by the scheduler's own tools
    QString program;      ///< absolute path
    QStringList arguments;
    QDateTime moment;
};

/// The two unit files of a task for systemd. The moment is given in UTC, so that the service
/// manager's time zone does not matter. A moment that passes while the machine is off or nobody is
/// logged on starts the program as soon as possible afterwards: the program decides what to do.
struct SystemdUnits {
    QString service;
    QString timer;
};
/// `environment`: variables that the program needs and the service manager may not have.
SystemdUnits systemdUnits(const ScheduledTask& task,
                          const std::vector<std::pair<QString, QString>>& environment);

/// The task for Windows' Task Scheduler, in its XML format 1.2. Runs whether or not the user is
/// logged on, on battery too, and without a time limit; starts late after a missed moment.
/// `user`: the account, as DOMAIN\NAME.
/// `withPassword`: the task is registered with the user's password. Without it the program reaches
/// no other machine's files.
QString windowsTaskXml(const ScheduledTask& task, const QString& user, bool withPassword);

/// One argument quoted the way Windows programs take their command line apart.
QString windowsQuoted(const QString& argument);

}  // namespace platform
