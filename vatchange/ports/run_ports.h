#pragma once

#include <QString>
#include <vector>

#include "vatchange/ports/run_steps.h"

namespace vatchange {

/// A run's interface to its surroundings: messages and questions, status and progress, change log,
/// cancellation. Implemented by the change form in the program and by a recorder in tests. Time
/// comes from data::Clock.
class RunPorts {
  public:
    virtual ~RunPorts() = default;

    /// True when no user is present: a question is logged and takes the answer that stops.
    virtual bool unattended() const = 0;
    /// Logs a message; also shows it in a dialog unless unattended.
    virtual void NaytaViesti(const QString& text) = 0;
    /// As NaytaViesti() for the end of a step: nobody has to answer, the run goes on by itself.
    virtual void stepFinished(const QString& text) { NaytaViesti(text); }
    /// Shows a message without logging it; never called unattended.
    virtual void showMessage(const QString& text) = 0;
    /// Asks a Yes/No question; never called unattended. Returns true for Yes.
    virtual bool ask(const QString& text) = 0;
    virtual void log(const QString& line) = 0;     ///< one line of the change log
    virtual void status(const QString& text) = 0;  ///< status line
    /// The steps of the run, before the first one; not called unattended.
    virtual void plan(const std::vector<PlannedStep>& /*steps*/) {}
    /// A step begins.
    virtual void beginStep(RunStep /*step*/) {}
    /// Status line of a step that begins, shown before its first statement.
    virtual void stepStatus(const QString& text) { status(text); }
    virtual void progress(qint64 done,
                          qint64 total) = 0;  ///< of the current step; total 0: unknown
    /// Processes pending window events; called between rows. Cheap when none are due.
    virtual void processEvents() = 0;
    /// True once the user pressed "Keskeytä"; polled between rows.
    virtual bool cancelled() const = 0;
    /// File name of the executable; decides whether the run mark is written.
    virtual QString programFileName() const = 0;
    /// "/EP": skip the early-date check.
    virtual bool skipEarlyDateCheck() const = 0;
    /// Name of the definition being run, for the unfinished-run note; empty if unnamed.
    virtual QString definitionName() const { return {}; }
};

}  // namespace vatchange
