#include "framework/core/moment_text.h"

namespace framework {

QString momentText(const QDateTime& moment) {
    return moment.toString(QStringLiteral("d.M.yyyy 'klo' H.mm"));
}

QString durationText(qint64 seconds) {
    if (seconds < 60)
        return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return QStringLiteral("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
    return QStringLiteral("%1 h %2 min").arg(seconds / 3600).arg(seconds / 60 % 60);
}

}  // namespace framework
