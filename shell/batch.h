#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

#include "company/batch_list.h"
#include "data/engine/engine.h"
#include "vatchange/run/change_run.h"

namespace shell {

/// Exit status of the program.
enum class ExitStatus {
    Done = 0,
    Failed = 1,       ///< a definition or the batch was refused, or part of a run failed
    Unavailable = 2,  ///< no such company, no database, no window that anybody sees, a batch list
                      ///< that cannot be read or names an unknown definition
    AlreadyRun = 3    ///< the run mark is set, and no batch is unfinished
};

/// The batch list as it was found.
struct BatchSource {
    company::BatchList names;
    company::BatchSettings settings;
    QString text;             ///< which file it is and what it holds, in Finnish
    bool unreadable = false;  ///< `text` says why
};

/// What a batch needs from the program.
struct BatchPorts {
    data::Database* database = nullptr;
    /// Whether the run mark is set (always false with "/U").
    std::function<bool()> alreadyRun;
    /// "/U": a batch that cannot be continued makes way for a new one.
    bool runAnyway = false;
    std::function<bool(const QString& definition)> isSaved;
    /// A saved definition's values after loading, as definitionNote(); empty if it cannot be read.
    std::function<QByteArray(const QString& definition)> values;
    /// What start-up could not read, in Finnish; nothing runs if there is any.
    std::function<QStringList()> problems;
    /// Creates and shows the change form.
    std::function<void()> openForm;
    /// Loads a definition into the form. @return false if it no longer exists.
    /// @throws data::DataError if it cannot be read.
    std::function<bool(const QString& definition)> load;
    /// Runs the definition in the form.
    std::function<vatchange::RunResult(const vatchange::RunOptions& options)> run;
    /// Of a rehearsal, whose copy nobody else runs: whether a run of the company is going on.
    std::function<bool()> otherRunGoesOn = [] { return false; };
    /// Makes a checked backup into a folder. @return why that failed, in Finnish; empty if it did
    /// not.
    std::function<QString(const QString& folder)> backup;
    /// Writes the report of the batch's runs. `notes`: why definitions were refused.
    /// @return why that failed, in Finnish; empty if it did not.
    std::function<QString(const std::vector<qint64>& runs, const QStringList& notes)> report;
    /// Whether the system has asked the program to end.
    std::function<bool()> endRequested;
    std::function<void(const QString& line)> generalLog;
    std::function<void(const QString& line)> standardError;
    std::function<void(const QString& line)> changeLog;
};

/// Shown or logged when a finished change is run again.
extern const QString kAlreadyRunText;

/// Begins the change log line before each new definition.
extern const QString kDefinitionBegins;

/// Prefix of change log lines about the program's own errors.
extern const QString kErrorPrefix;

/// Runs the definitions in list order and skips empty names. Which list it is goes to the general
/// log, and to standard error if it holds nothing or cannot be read. A definition that fails or
/// cannot be read does not stop the next ones; a name that is not saved stops all before the first.
/// A cancelled run ends the batch. A backup that was asked for and fails refuses the batch; one is
/// made when a batch begins, not when it is continued. The report is written at the end, unless the
/// system has asked the program to end.
///
/// Where the database keeps a journal, the batch is stored there until all its definitions are
/// finished, and the company's run lock is held to its end. An unfinished batch is continued: its
/// finished definitions are not run again, its unfinished runs are resumed. If its list or a
/// definition was edited meanwhile, it is refused.
///
/// Other errors of the ports are passed on.
ExitStatus runBatch(const BatchSource& list, const BatchPorts& ports);

}  // namespace shell
