#pragma once

#include <QString>

namespace vatchange {

/// What a run needs from outside: messages and questions, status and progress, the change log,
/// a way to stop. The change form supplies it in the program, a recorder in tests. Time comes from
/// data::Clock.
class RunPorts {
  public:
    virtual ~RunPorts() = default;

    /// No person is there: questions take their stop answer and go to the log.
    virtual bool unattended() const = 0;
    /// NaytaViesti: to the change log in both modes, a dialog only when a person is there.
    virtual void NaytaViesti(const QString& text) = 0;
    /// A message dialog that is not logged here; never called unattended.
    virtual void showMessage(const QString& text) = 0;
    /// A Yes/No question; never called unattended. @return true for Yes.
    virtual bool ask(const QString& text) = 0;
    virtual void log(const QString& line) = 0;     ///< one line of the change log
    virtual void status(const QString& text) = 0;  ///< status line
    virtual void progress(qint64 done,
                          qint64 total) = 0;  ///< of the present step; total 0: unknown
    /// Lets pending window messages be processed; called between rows. Cheap when nothing is due.
    virtual void breathe() = 0;
    /// "Keskeytä" was pressed; asked between rows.
    virtual bool cancelled() const = 0;
    /// The program's own file name, which decides whether the run mark is written.
    virtual QString programFileName() const = 0;
    /// "/EP": skip the early-date check.
    virtual bool skipEarlyDateCheck() const = 0;
    /// Name of the definition that is run, for the note of an unfinished run; empty when unnamed.
    virtual QString definitionName() const { return {}; }
};

}  // namespace vatchange
