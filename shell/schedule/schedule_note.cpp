#include "shell/schedule/schedule_note.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <array>

#include "platform/command_line.h"
#include "platform/ini_change.h"
#include "platform/read_file.h"
#include "platform/user_settings.h"

namespace shell {

namespace {

const QString kSwitch = QStringLiteral("/AJASTETTU=");
const QString kUtcMinutes = QStringLiteral("yyyy-MM-ddThh:mm");
const QString kCompany = QStringLiteral("Yritys");
const QString kMoment = QStringLiteral("Hetki");
const QString kRehearsal = QStringLiteral("Koeajo");
const QString kStarted = QStringLiteral("Alkoi");
const QString kEnded = QStringLiteral("Paattyi");
const QString kStatus = QStringLiteral("Paluuarvo");
const QString kLate = QStringLiteral("Myohassa");

QString notesFile() {
    return platform::userSettingsFolder() + QStringLiteral("/ajastukset.ini");
}

QString utcText(const QDateTime& moment) {
    return moment.isValid() ? moment.toUTC().toString(Qt::ISODate) : QString();
}

QDateTime localMoment(const QString& text) {
    return QDateTime::fromString(text, Qt::ISODate).toLocalTime();
}

QString lowerFirst(QString text) {
    if (!text.isEmpty())
        text[0] = text[0].toLower();
    return text;
}

QString timeText(const QDateTime& moment) {
    return moment.toString(QStringLiteral("H.mm"));
}

QString what(const ScheduleNote& note) {
    return note.rehearsal ? QStringLiteral("Eräajon koeajo") : QStringLiteral("Eräajo");
}

// The exit statuses of "/E", as the manual lists them.
QString outcome(int status) {
    switch (status) {
        case 0:
            return QStringLiteral("kaikki onnistui");
        case 1:
            return QStringLiteral("kaikki ei onnistunut, katso loki");
        case 2:
            return QStringLiteral("ei voitu ajaa, katso loki");
        case 3:
            return QStringLiteral("ei ajettu, ajomerkintä on jo");
        default:
            return QStringLiteral("paluuarvo %1").arg(status);
    }
}

}  // namespace

QString scheduleId(const QString& company) {
    QByteArray key = company.toUtf8();
    for (char& c : key)  // as companies' names compare
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return QStringLiteral("eraajo-") +
           QString::fromLatin1(
               QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().first(16));
}

std::optional<ScheduleNote> readSchedule(const QString& company) {
    const platform::IniFile ini = platform::IniFile::read(notesFile());
    const QString section = scheduleId(company);
    const auto value = [&](const QString& key) {
        return ini.value(section, key).value_or(QString());
    };
    ScheduleNote note{value(kCompany), localMoment(value(kMoment)),
                      value(kRehearsal) == QLatin1String("1")};
    if (!note.moment.isValid())
        return std::nullopt;
    note.started = localMoment(value(kStarted));
    note.ended = localMoment(value(kEnded));
    bool isNumber = false;
    const int status = value(kStatus).toInt(&isNumber);
    if (isNumber)
        note.status = status;
    note.late = value(kLate) == QLatin1String("1");
    return note;
}

void writeSchedule(const ScheduleNote& note) {
    const QString folder = QFileInfo(notesFile()).absolutePath();
    if (!QDir().mkpath(folder))
        throw platform::folderCannotBeMade(folder);
    const auto flag = [](bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); };
    platform::changeIniFile(notesFile(), [&](platform::IniFile& ini) {
        const QString section = scheduleId(note.company);
        ini.setValue(section, kCompany, note.company);
        ini.setValue(section, kMoment, utcText(note.moment));
        ini.setValue(section, kRehearsal, flag(note.rehearsal));
        ini.setValue(section, kStarted, utcText(note.started));
        ini.setValue(section, kEnded, utcText(note.ended));
        ini.setValue(section, kStatus, note.status ? QString::number(*note.status) : QString());
        ini.setValue(section, kLate, flag(note.late));
        return true;
    });
}

bool removeSchedule(const QString& company) {
    if (!QFileInfo::exists(notesFile()))
        return false;
    bool removed = false;
    platform::changeIniFile(notesFile(), [&](platform::IniFile& ini) {
        removed = ini.removeSection(scheduleId(company));
        return removed;
    });
    return removed;
}

QString scheduleSwitch(const QDateTime& moment) {
    return kSwitch + moment.toUTC().toString(kUtcMinutes) + QLatin1Char('Z');
}

QDateTime scheduledMoment(const QString& parameter) {
    if (!platform::sameSwitch(parameter.first(qMin(parameter.size(), kSwitch.size())), kSwitch) ||
        !parameter.endsWith(QLatin1Char('Z')))
        return {};
    QDateTime moment =
        QDateTime::fromString(parameter.sliced(kSwitch.size()).chopped(1), kUtcMinutes);
    moment.setTimeSpec(Qt::UTC);
    return moment.isValid() ? moment.toLocalTime() : QDateTime();
}

QString refusalOfScheduledStart(const QDateTime& moment, const QDateTime& now,
                                const std::optional<ScheduleNote>& note) {
    if (!note || note->moment != moment)
        return QStringLiteral(
                   "Ajastettua eräajoa %1 ei tehdä: ajastus on poistettu tai sitä on muutettu.")
            .arg(momentText(moment));
    if (moment.secsTo(now) > kLatestStartSeconds)
        return QStringLiteral(
                   "Ajastettua eräajoa %1 ei tehdä: se käynnistyi yli tunnin myöhässä. Ajasta se "
                   "uudelleen tai aja se käsin.")
            .arg(momentText(moment));
    return {};
}

QString momentText(const QDateTime& moment) {
    static constexpr std::array kDays = {u"ma", u"ti", u"ke", u"to", u"pe", u"la", u"su"};
    return QString::fromUtf16(kDays[static_cast<std::size_t>(moment.date().dayOfWeek() - 1)]) +
           moment.toString(QStringLiteral(" d.M.yyyy 'klo' H.mm"));
}

QString scheduleText(const ScheduleNote& note, bool isScheduled, const QDateTime& now) {
    const QString scheduled =
        QStringLiteral("Ajastettu ") + lowerFirst(what(note)) + u' ' + momentText(note.moment);
    const QString missed = scheduled + QStringLiteral(" jäi väliin: ");
    if (note.late)
        return missed + QStringLiteral("kone tai ohjelma käynnistyi vasta ") +
               momentText(note.started) + u'.';
    if (note.status)
        return scheduled + QStringLiteral(" päättyi klo %1: %2.")
                               .arg(timeText(note.ended), outcome(*note.status));
    if (note.started.isValid())
        return scheduled + QStringLiteral(" on käynnissä tai katkesi (alkoi klo %1).")
                               .arg(timeText(note.started));
    if (note.moment.secsTo(now) > kLatestStartSeconds)
        return missed + QStringLiteral("kone ei ollut silloin käynnissä.");
    if (!isScheduled)
        return scheduled + QStringLiteral(" ei käynnisty: ajastin ei enää tunne sitä.");
    return QStringLiteral("Ajastettu: ") + lowerFirst(what(note)) + u' ' + momentText(note.moment);
}

}  // namespace shell
