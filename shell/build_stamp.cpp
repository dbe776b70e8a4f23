#include "shell/build_stamp.h"

#include <QDateTime>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

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

std::optional<qint64> imageTime() {
#ifdef Q_OS_WIN
    const auto* image = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
    const auto* start = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + start->e_lfanew);
    if (const DWORD seconds = headers->FileHeader.TimeDateStamp; seconds != 0)
        return static_cast<qint64>(seconds);
#endif
    return std::nullopt;
}

QString buildStamp() {
    return buildStampText(programBuildTime);
}

}  // namespace shell
