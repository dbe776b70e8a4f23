#pragma once

#include <QDateTime>
#include <QString>

namespace framework {

/// "1.9.2024 klo 0.30": how windows and reports write a moment.
QString momentText(const QDateTime& moment);

/// "12 s", "3 min 5 s", "1 h 2 min".
QString durationText(qint64 seconds);

}  // namespace framework
