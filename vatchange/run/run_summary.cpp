#include "vatchange/run/run_summary.h"

#include <QFile>
#include <QFileInfo>
#include <deque>

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

LogExcerpt logLines(const RunSummary& summary) {
    LogExcerpt excerpt;
    QFile file(summary.logName);
    if (file.exists() && !QFileInfo(file).isFile()) {  // reading a pipe could wait for ever
        excerpt.problem = QStringLiteral("se ei ole tavallinen tiedosto");
        return excerpt;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        excerpt.problem = file.errorString();
        return excerpt;
    }
    if (file.size() < summary.logTo || !file.seek(summary.logFrom)) {
        excerpt.problem = QStringLiteral("lokia on lyhennetty ajon jälkeen");
        return excerpt;
    }
    std::deque<QByteArray> last;
    while (file.pos() < summary.logTo && !file.atEnd()) {
        const QByteArray line = file.readLine();
        if (excerpt.first.size() < LogExcerpt::kFirstLines) {
            excerpt.first += QString::fromUtf8(line).trimmed().left(LogExcerpt::kLineLength);
            continue;
        }
        last.push_back(line);
        if (last.size() > static_cast<std::size_t>(LogExcerpt::kLastLines)) {
            last.pop_front();
            ++excerpt.leftOut;
        }
    }
    for (const QByteArray& line : last)
        excerpt.last += QString::fromUtf8(line).trimmed().left(LogExcerpt::kLineLength);
    return excerpt;
}

}  // namespace vatchange
