#pragma once

#include <QString>

#include "data/error.h"
#include "engines/data_names.h"

namespace engines::journal {

inline constexpr int kPlaceBits = 32;

/// Where a run's entry or table stands.
inline qint64 placeOf(qint64 run, qint64 seq) {
    return (run << kPlaceBits) + seq;
}

inline DataError damaged(qint64 run, const char* what) {
    return DataError(ErrorKind::Damaged, QStringLiteral("run journal"),
                     QStringLiteral("run %1: %2").arg(run).arg(QLatin1String(what)))
        .inFinnish(QStringLiteral("ajopäiväkirjan ajo %1 on vioittunut").arg(run));
}

}  // namespace engines::journal
