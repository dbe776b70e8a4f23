#include "vatchange/run/run_summary.h"

#include <QFileInfo>

#include "company/logs.h"
#include "data/clock.h"

namespace vatchange {

RunSummary runWithSummary(data::Database& database, const LoadedDefinition& definition,
                          RunPorts& ports, const RunOptions& options) {
    RunSummary summary;
    summary.definitionName = ports.definitionName();
    summary.definition = definition.definition;
    summary.logName = QFileInfo(company::AlvMuutosLogName()).absoluteFilePath();
    summary.logFrom = QFileInfo(summary.logName).size();
    summary.started = data::Clock::now();
    const qint64 lostBefore = company::lostChangeLogLines().count;
    summary.result = runChange(database, definition, ports, options);
    summary.result.lostLogLines = company::lostChangeLogLines().count - lostBefore;
    if (summary.result.lostLogLines > 0)
        summary.result.logProblem = company::lostChangeLogLines().problem;
    summary.ended = data::Clock::now();
    summary.logTo = QFileInfo(summary.logName).size();
    return summary;
}

}  // namespace vatchange
