#pragma once

#include <QDateTime>
#include <QString>

namespace shell {

/// This process's start by the system's scheduler, if it is one: what the main window tells about
/// it later is noted, and the task, which has done its work, is removed.
class ScheduledStart {
  public:
    /// @param company as named on the command line; needed because the start may fail before the
    ///        company is known
    explicit ScheduledStart(const QString& company);

    /// Notes the start. @return why nothing may be run, in Finnish; empty if it may
    QString refusal();
    /// Notes the end and removes the task. Failures go to standard error.
    void ended(int exitStatus);

  private:
    bool isScheduled() const { return m_moment.isValid(); }

    QString m_company;
    QDateTime m_moment;  ///< invalid: an ordinary start
};

}  // namespace shell
