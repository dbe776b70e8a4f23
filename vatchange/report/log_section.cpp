#include "vatchange/report/log_section.h"

#include <QDir>

namespace vatchange {

void logSection(ReportHtml& html, const QString& logName, const LogExcerpt& log) {
    const QString shownName = QDir::toNativeSeparators(logName);
    if (!log.problem.isEmpty()) {
        html.paragraph(QStringLiteral("Lokia %1 ei voitu lukea: %2").arg(shownName, log.problem));
        return;
    }
    for (const QString& line : log.first)
        html.logLine(line);
    if (log.leftOut > 0) {
        html.paragraph(QStringLiteral("Tästä on jätetty pois %1 riviä. Ne ovat lokissa %2.")
                           .arg(countText(log.leftOut), shownName));
    }
    for (const QString& line : log.last)
        html.logLine(line);
}

}  // namespace vatchange
