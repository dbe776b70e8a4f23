#include "app/shell/build_stamp.h"

#include <QDateTime>

namespace shell {

namespace {
std::optional<qint64> programBuildTime;
}

QString buildStampText(std::optional<qint64> buildTime) {
    const QDateTime time = buildTime ? QDateTime::fromSecsSinceEpoch(*buildTime)
                                     : QDateTime(QDate(1899, 12, 30), QTime(0, 0));
    return time.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
}

void setBuildTime(qint64 secondsSince1970) {
    programBuildTime = secondsSince1970;
}

QString buildStamp() {
    return buildStampText(programBuildTime);
}

}  // namespace shell
