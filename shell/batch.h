#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "company/batch_list.h"
#include "vatchange/run/change_run.h"

namespace shell {

/// Exit status of the program.
enum class ExitStatus {
    Done = 0,
    Failed = 1,       ///< a definition was refused, or something of a run went wrong
    Unavailable = 2,  ///< no such company, no database, or an unknown definition in the batch list
    AlreadyRun = 3    ///< the run mark is set
};

/// What a batch needs from outside.
struct BatchPorts {
    /// The run mark keeps the batch from running (never under "/U").
    std::function<bool()> alreadyRun;
    std::function<bool(const QString& definition)> isSaved;
    /// What start-up could not read, in Finnish: nothing is run then.
    std::function<QStringList()> problems;
    /// Creates and shows the change form.
    std::function<void()> openForm;
    /// Loads a definition into the form. @return false when it is gone.
    /// @throws data::DataError when it cannot be read.
    std::function<bool(const QString& definition)> load;
    /// Carries out what is in the form.
    std::function<vatchange::RunResult()> run;
    std::function<void(const QString& line)> generalLog;
    std::function<void(const QString& line)> changeLog;
};

/// The text that a second run of a finished change is answered with.
extern const QString kAlreadyRunText;

/// Begins a change log line about an error of the program itself.
extern const QString kErrorPrefix;

/// Runs the definitions of the list in its order, empty ones passed over. A definition that fails
/// or cannot be read does not keep the following ones from running; one that is not saved keeps all
/// of them. Other errors of the ports reach the caller.
ExitStatus runBatch(const company::BatchList& list, const BatchPorts& ports);

}  // namespace shell
