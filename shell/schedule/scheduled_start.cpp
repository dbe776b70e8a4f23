#include "shell/schedule/scheduled_start.h"

#include <QTextStream>
#include <functional>

#include "data/clock.h"
#include "data/error.h"
#include "platform/command_line.h"
#include "platform/schedule/task_scheduler.h"
#include "shell/schedule/schedule_note.h"

namespace shell {

namespace {

// The batch does not depend on the note: what fails here is told and stops nothing.
void tellFailure(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& e) {
        QTextStream(stderr) << QStringLiteral("Ajastus: ") << data::errorText(e) << '\n';
    }
}

}  // namespace

ScheduledStart::ScheduledStart(const QString& company) : m_company(company) {
    if (!platform::hasSwitch(QStringLiteral("/E")))
        return;
    for (const QString& parameter : platform::parameters())
        if (const QDateTime moment = scheduledMoment(parameter); moment.isValid())
            m_moment = moment;
}

QString ScheduledStart::refusal() {
    if (!isScheduled())
        return {};
    std::optional<ScheduleNote> note;
    try {
        note = readSchedule(m_company);
    } catch (const data::DataError& e) {
        return QStringLiteral("Ajastettua eräajoa ei tehdä: ") + e.finnish();
    }
    const QDateTime now = data::Clock::now();
    QString reason = refusalOfScheduledStart(m_moment, now, note);
    if (note && note->moment == m_moment)
        tellFailure([&] {
            note->started = now;
            note->late = !reason.isEmpty();
            writeSchedule(*note);
        });
    return reason;
}

void ScheduledStart::ended(int exitStatus) {
    if (!isScheduled())
        return;
    tellFailure([&] {
        std::optional<ScheduleNote> note = readSchedule(m_company);
        if (note && note->moment != m_moment)
            return;  // the task is another one by now
        if (note) {
            note->ended = data::Clock::now();
            note->status = exitStatus;
            writeSchedule(*note);
        }
        platform::TaskScheduler::instance().remove(scheduleId(m_company));
    });
}

}  // namespace shell
