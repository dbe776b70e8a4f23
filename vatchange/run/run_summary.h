#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

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

/// A run's log lines; of a long run only the first and last ones.
struct LogExcerpt {
    static constexpr int kFirstLines = 400;
    static constexpr int kLastLines = 600;
    static constexpr int kLineLength = 600;  ///< characters; the rest of a longer line is left out

    QStringList first;
    qint64 leftOut = 0;  ///< lines between the two
    QStringList last;
    QString problem;  ///< why the log could not be read, in Finnish
};

/// Reads the lines of a run back from the change log. Never throws.
LogExcerpt logLines(const RunSummary& summary);

}  // namespace vatchange
