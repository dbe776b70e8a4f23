#include "vatchange/run/run_record.h"

#include <QFile>
#include <QFileInfo>
#include <deque>

#include "company/logs.h"
#include "data/clock.h"

namespace vatchange {

RunRecord recordRun(data::Database& database, const LoadedDefinition& definition, RunPorts& ports) {
    RunRecord record;
    record.definitionName = ports.definitionName();
    record.definition = definition.definition;
    record.logName = QFileInfo(company::AlvMuutosLogName()).absoluteFilePath();
    record.logFrom = QFileInfo(record.logName).size();
    record.started = data::Clock::now();
    record.result = runChange(database, definition, ports);
    record.ended = data::Clock::now();
    record.logTo = QFileInfo(record.logName).size();
    return record;
}

LogExcerpt logLines(const RunRecord& record) {
    LogExcerpt excerpt;
    QFile file(record.logName);
    if (!file.open(QIODevice::ReadOnly)) {
        excerpt.problem = file.errorString();
        return excerpt;
    }
    if (file.size() < record.logTo || !file.seek(record.logFrom)) {
        excerpt.problem = QStringLiteral("lokia on lyhennetty ajon jälkeen");
        return excerpt;
    }
    std::deque<QByteArray> last;
    while (file.pos() < record.logTo && !file.atEnd()) {
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
