#include <QtGlobal>

#ifndef Q_OS_WIN

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

#include "data/error.h"
#include "platform/read_file.h"
#include "platform/schedule/system_scheduler.h"

namespace platform {

namespace {

constexpr int kCommandMs = 20'000;

struct Answer {
    bool done = false;  ///< the command ended with status 0
    QString output;
    QString problem;
};

Answer run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    Answer answer;
    if (!process.waitForStarted() || !process.waitForFinished(kCommandMs)) {
        answer.problem = program + QStringLiteral(": ") + process.errorString();
        return answer;
    }
    answer.done = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    answer.output = QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
    answer.problem = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    return answer;
}

Answer systemctl(const QStringList& arguments) {
    return run(QStringLiteral("systemctl"),
               QStringList{QStringLiteral("--user"), QStringLiteral("--no-pager")} + arguments);
}

void demand(const QStringList& arguments) {
    const Answer answer = systemctl(arguments);
    if (!answer.done)
        throw data::DataError(data::ErrorKind::Io,
                              QStringLiteral("systemctl --user ") + arguments.join(u' '),
                              answer.problem)
            .inFinnish({}, QStringLiteral("Ajastus ei ole voimassa. Tarkista, että käyttäjän "
                                          "systemd toimii (systemctl --user status)."));
}

QString unitFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/systemd/user");
}

QString timerName(const QString& id) {
    return QStringLiteral("taksavaihe-") + id + QStringLiteral(".timer");
}

QString serviceName(const QString& id) {
    return QStringLiteral("taksavaihe-") + id + QStringLiteral(".service");
}

QString unitFile(const QString& name) {
    return unitFolder() + u'/' + name;
}

void write(const QString& name, const QString& text) {
    QSaveFile file(unitFile(name));
    const QByteArray bytes = text.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw data::DataError(data::ErrorKind::Io, file.fileName(), file.errorString());
}

QString accountName() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr ? QString::fromLocal8Bit(entry->pw_name) : QString::number(::getuid());
}

// Settings and batch list must be found where this process finds them.
std::vector<std::pair<QString, QString>> neededEnvironment() {
    std::vector<std::pair<QString, QString>> variables;
    for (const char* name : {"XDG_CONFIG_HOME", "LANG", "LC_ALL", "TZ"})
        if (qEnvironmentVariableIsSet(name))
            variables.emplace_back(QLatin1String(name), qEnvironmentVariable(name));
    return variables;
}

// Takes the task away as far as possible. @return whether the manager did what it was told
bool discard(const QString& id, QString* problem = nullptr) {
    const Answer disabled =
        systemctl({QStringLiteral("disable"), QStringLiteral("--now"), timerName(id)});
    for (const QString& name : {timerName(id), serviceName(id)})
        QFile::remove(unitFile(name));
    // what "enable" made, in case it could not be undone
    QFile::remove(unitFolder() + QStringLiteral("/timers.target.wants/") + timerName(id));
    const bool reloaded = systemctl({QStringLiteral("daemon-reload")}).done;
    if (problem != nullptr)
        *problem = disabled.problem;
    return disabled.done || reloaded;
}

class SystemdScheduler : public TaskScheduler {
  public:
    QString problem() override {
        if (systemctl({QStringLiteral("list-timers"), QStringLiteral("--no-legend")}).done)
            return {};
        return QStringLiteral(
            "Tällä koneella ei ole ajastinta, jota ohjelma osaa käyttää: käyttäjän systemd ei "
            "vastaa (systemctl --user). Ajasta komento \"taksavaihe YRITYS /E\" järjestelmän "
            "omalla ajastimella, esimerkiksi cronilla.");
    }

    void store(const ScheduledTask& task, const QString&) override {
        if (!QDir().mkpath(unitFolder()))
            throw folderCannotBeMade(unitFolder());
        const SystemdUnits units = systemdUnits(task, neededEnvironment());
        const QString timer = timerName(task.id);
        try {
            if (QFile::exists(unitFile(timer)))  // its old moment must not come any more
                systemctl({QStringLiteral("stop"), timer});
            write(serviceName(task.id), units.service);
            write(timer, units.timer);
            demand({QStringLiteral("daemon-reload")});
            // a stamp of an earlier task of this name would count as a start that was missed
            systemctl({QStringLiteral("clean"), QStringLiteral("--what=state"), timer});
            demand({QStringLiteral("enable"), QStringLiteral("--now"), timer});
        } catch (const data::DataError&) {
            discard(task.id);  // half a task would start at some other time
            throw;
        }
    }

    bool remove(const QString& id) override {
        const bool known = QFile::exists(unitFile(timerName(id)));
        if (!known && !QFile::exists(unitFile(serviceName(id))))
            return false;
        QString problem;
        const bool obeyed = discard(id, &problem);
        for (const QString& name : {timerName(id), serviceName(id)})
            if (QFile::exists(unitFile(name)))
                throw data::DataError(data::ErrorKind::Io, unitFile(name),
                                      QStringLiteral("the file cannot be removed"))
                    .inFinnish(QStringLiteral("tiedostoa ei voi poistaa"),
                               QStringLiteral("Poista se itse: muuten ajastus jää voimaan."));
        if (known && !obeyed)
            throw data::DataError(data::ErrorKind::Io, timerName(id), problem)
                .inFinnish({}, QStringLiteral("Ajastus ei jää voimaan seuraavan käynnistyksen "
                                              "jälkeen, mutta käyttäjän systemd ei vastannut."));
        return true;
    }

    bool exists(const QString& id) override {
        return QFile::exists(unitFile(timerName(id))) &&
               systemctl({QStringLiteral("is-enabled"), timerName(id)}).done;
    }

    bool runsWithoutLogon() override {
        return run(QStringLiteral("loginctl"),
                   {QStringLiteral("show-user"), accountName(), QStringLiteral("--property=Linger"),
                    QStringLiteral("--value")})
                   .output == QLatin1String("yes");
    }

    bool allowWithoutLogon() override {
        run(QStringLiteral("loginctl"),
            {QStringLiteral("--no-ask-password"), QStringLiteral("enable-linger"), accountName()});
        return runsWithoutLogon();
    }

    QString commandForWithoutLogon() const override {
        return QStringLiteral("loginctl enable-linger ") + accountName();
    }
};

}  // namespace

TaskScheduler& systemScheduler() {
    static SystemdScheduler scheduler;
    return scheduler;
}

}  // namespace platform

#endif
