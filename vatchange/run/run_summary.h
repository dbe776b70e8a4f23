#pragma once

#include <QDateTime>
#include <QString>

#include "vatchange/run/change_run.h"

namespace vatchange {

/// Data for a run's report: definition, times, result and the position of its lines in the change
/// log.
struct RunSummary {
    QString definitionName;  ///< empty for an unsaved definition
    ChangeDefinition definition;
    QDateTime started;  ///< local time
    QDateTime ended;
    RunResult result;
    QString logName;     ///< full path of the change log
    qint64 logFrom = 0;  ///< byte range of the run's lines: [logFrom, logTo)
    qint64 logTo = 0;
};

/// Runs the change and collects the data for its report.
RunSummary runWithSummary(data::Database& database, const LoadedDefinition& definition,
                          RunPorts& ports, const RunOptions& options = {});

}  // namespace vatchange
