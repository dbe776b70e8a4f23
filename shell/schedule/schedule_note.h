#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

namespace shell {

/// A start of the batch, or of its rehearsal, that the system's scheduler was asked for. One for
/// each company and user; it is kept in "ajastukset.ini" in the user's settings folder, so that the
/// main window can tell what became of it.
struct ScheduleNote {
    QString company;
    QDateTime moment;  ///< local time, whole minutes
    bool rehearsal = false;
    QDateTime started = {};          ///< invalid: not yet
    QDateTime ended = {};            ///< invalid: not yet, or the program was killed
    std::optional<int> status = {};  ///< exit status of the program
    bool late = false;               ///< it was started too late and did nothing
};

/// A start later than this after its moment does nothing: people may be at work already.
inline constexpr int kLatestStartSeconds = 3600;

/// Names the company's task in the scheduler: the name itself may hold any character.
QString scheduleId(const QString& company);

/// @throws data::DataError naming the file.
std::optional<ScheduleNote> readSchedule(const QString& company);
void writeSchedule(const ScheduleNote& note);
/// @return false if there was none.
bool removeSchedule(const QString& company);

/// The switch that tells a scheduled start its moment: "/AJASTETTU=2024-08-31T21:15Z".
QString scheduleSwitch(const QDateTime& moment);
/// The moment of such a switch in local time; invalid for any other parameter.
QDateTime scheduledMoment(const QString& parameter);

/// Why a scheduled start at `now` does nothing, in Finnish; empty if it goes on. `note`: what is
/// known of the company's schedule.
QString refusalOfScheduledStart(const QDateTime& moment, const QDateTime& now,
                                const std::optional<ScheduleNote>& note);

/// The main window's line: "Ajastettu: eräajo su 1.9.2024 klo 0.15", or what became of it.
/// `isScheduled`: the scheduler knows the task.
QString scheduleText(const ScheduleNote& note, bool isScheduled, const QDateTime& now);

/// "su 1.9.2024 klo 0.15"
QString momentText(const QDateTime& moment);

}  // namespace shell
