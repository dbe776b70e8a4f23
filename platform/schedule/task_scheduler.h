#pragma once

#include <QString>

#include "platform/schedule/scheduled_task.h"

namespace platform {

/// The operating system's own scheduler: Windows' Task Scheduler (folder "Taksavaihe"), elsewhere
/// timers of the user's systemd. Tasks run with this user's rights. Tests replace it.
class TaskScheduler {
  public:
    virtual ~TaskScheduler() = default;

    /// Why nothing can be scheduled here, in Finnish; empty if it can.
    virtual QString problem() = 0;
    /// Creates the task or replaces the one with the same id.
    /// `password`: of the user's account, for Windows only; may be empty.
    /// @throws data::DataError with what to do about it.
    virtual void store(const ScheduledTask& task, const QString& password) = 0;
    /// @return false if there is no such task. @throws data::DataError
    virtual bool remove(const QString& id) = 0;
    virtual bool exists(const QString& id) = 0;

    /// Whether tasks also run while the user is not logged on.
    virtual bool runsWithoutLogon() { return true; }
    /// Tries to make runsWithoutLogon() true. @return whether it is now
    virtual bool allowWithoutLogon() { return runsWithoutLogon(); }
    /// The command with which an administrator does the same; empty if there is none.
    virtual QString commandForWithoutLogon() const { return {}; }
    /// Whether store() uses a password.
    virtual bool takesPassword() const { return false; }

    static TaskScheduler& instance();
    /// @return the previous one. nullptr sets the system's own.
    static TaskScheduler* setInstance(TaskScheduler* scheduler);
};

}  // namespace platform
