#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "vatchange/run/change_run.h"

namespace vatchange {

/// A run as its report tells of it: what was run, when, how it ended, and where its lines stand in
/// the change log.
struct RunSummary {
    QString definitionName;  ///< empty when the definition was run unsaved
    ChangeDefinition definition;
    QDateTime started;  ///< local time
    QDateTime ended;
    RunResult result;
    QString logName;     ///< full path of the change log
    qint64 logFrom = 0;  ///< bytes: the run's lines are between the two
    qint64 logTo = 0;
};

/// Runs the change and keeps what its report needs.
RunSummary runWithSummary(data::Database& database, const LoadedDefinition& definition,
                          RunPorts& ports);

/// A run's log lines, bounded: of a long run the first and the last ones.
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
