#include "platform/schedule/scheduled_task.h"

namespace platform {

namespace {

const QString kUtcText = QStringLiteral("yyyy-MM-dd hh:mm:ss");

QString onOneLine(QString text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control)
            c = QLatin1Char(' ');
    return text;
}

// "%" starts a specifier everywhere in a unit file.
QString withoutSpecifiers(QString text) {
    return text.replace(QLatin1Char('%'), QStringLiteral("%%"));
}

QString unitQuoted(QString text) {
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') + withoutSpecifiers(onOneLine(text)) + QLatin1Char('"');
}

// "$" starts a variable in arguments, but not in the program's path.
QString unitArgument(const QString& text) {
    return unitQuoted(text).replace(QLatin1Char('$'), QStringLiteral("$$"));
}

QString xml(const QString& text) {
    return onOneLine(text).toHtmlEscaped();
}

}  // namespace

SystemdUnits systemdUnits(const ScheduledTask& task,
                          const std::vector<std::pair<QString, QString>>& environment) {
    const QString head = QStringLiteral("[Unit]\nDescription=") +
                         withoutSpecifiers(onOneLine(task.description)) + QStringLiteral("\n\n");
    SystemdUnits units;
    units.service = head + QStringLiteral("[Service]\nType=oneshot\n");
    for (const auto& [name, value] : environment)
        units.service += QStringLiteral("Environment=") +
                         unitQuoted(name + QLatin1Char('=') + value) + QLatin1Char('\n');
    units.service += QStringLiteral("ExecStart=") + unitQuoted(task.program);
    for (const QString& argument : task.arguments)
        units.service += QLatin1Char(' ') + unitArgument(argument);
    units.service += QLatin1Char('\n');
    units.timer = head + QStringLiteral("[Timer]\nOnCalendar=") +
                  task.moment.toUTC().toString(kUtcText) +
                  QStringLiteral(
                      " UTC\nAccuracySec=1s\nPersistent=true\n\n"
                      "[Install]\nWantedBy=timers.target\n");
    return units;
}

QString windowsQuoted(const QString& argument) {
    QString quoted = QStringLiteral("\"");
    qsizetype backslashes = 0;  // doubled only before a quote
    for (const QChar c : argument) {
        if (c == QLatin1Char('\\')) {
            ++backslashes;
            continue;
        }
        quoted += QString((c == QLatin1Char('"') ? 2 : 1) * backslashes, QLatin1Char('\\'));
        backslashes = 0;
        if (c == QLatin1Char('"'))
            quoted += QLatin1Char('\\');
        quoted += c;
    }
    return quoted + QString(2 * backslashes, QLatin1Char('\\')) + QLatin1Char('"');
}

QString windowsTaskXml(const ScheduledTask& task, const QString& user, bool withPassword) {
    QStringList arguments;
    for (const QString& argument : task.arguments)
        arguments += windowsQuoted(argument);
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
               "<Task version=\"1.2\" "
               "xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">\n"
               "  <RegistrationInfo>\n"
               "    <Author>%1</Author>\n"
               "    <Description>%2</Description>\n"
               "  </RegistrationInfo>\n"
               "  <Triggers>\n"
               "    <TimeTrigger>\n"
               "      <StartBoundary>%3</StartBoundary>\n"
               "    </TimeTrigger>\n"
               "  </Triggers>\n"
               "  <Principals>\n"
               "    <Principal id=\"Author\">\n"
               "      <UserId>%1</UserId>\n"
               "      <LogonType>%4</LogonType>\n"
               "      <RunLevel>LeastPrivilege</RunLevel>\n"
               "    </Principal>\n"
               "  </Principals>\n"
               "  <Settings>\n"
               "    <MultipleInstancesPolicy>IgnoreNew</MultipleInstancesPolicy>\n"
               "    <DisallowStartIfOnBatteries>false</DisallowStartIfOnBatteries>\n"
               "    <StopIfGoingOnBatteries>false</StopIfGoingOnBatteries>\n"
               "    <StartWhenAvailable>true</StartWhenAvailable>\n"
               "    <Enabled>true</Enabled>\n"
               "    <WakeToRun>true</WakeToRun>\n"
               "    <ExecutionTimeLimit>PT0S</ExecutionTimeLimit>\n"
               "  </Settings>\n"
               "  <Actions Context=\"Author\">\n"
               "    <Exec>\n"
               "      <Command>%5</Command>\n"
               "      <Arguments>%6</Arguments>\n"
               "    </Exec>\n"
               "  </Actions>\n"
               "</Task>\n")
        .arg(xml(user), xml(task.description),
             task.moment.toUTC().toString(QStringLiteral("yyyy-MM-ddThh:mm:ssZ")),
             withPassword ? QStringLiteral("Password") : QStringLiteral("S4U"),
             xml(windowsQuoted(task.program)), xml(arguments.join(QLatin1Char(' '))));
}

}  // namespace platform
