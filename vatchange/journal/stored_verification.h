#pragma once

#include <QDateTime>
#include <QStringList>
#include <optional>

#include "vatchange/journal/history.h"
#include "vatchange/journal/verification.h"

namespace vatchange {

/// What a run's verification found, as its journal keeps it: enough for the history and a report
/// without reading the database again.
struct StoredVerification {
    QDateTime when;
    bool holds = false;
    QStringList lines;                    ///< verificationTextFinnish()
    std::vector<ChangedRecords> records;  ///< changed records by table
    qint64 empty = 0;                     ///< prices above 0 that became 0 or negative
};

/// @throws data::DataError.
void storeVerification(data::RunJournal& journal, const Verification& verification,
                       const QDateTime& when);
/// Nothing if the run was not verified, or by an older version. @throws data::DataError.
std::optional<StoredVerification> storedVerification(data::RunJournal& journal, qint64 run);

/// The changed records of a run: from its stored verification if it has one, else counted in its
/// journal. @throws data::DataError.
std::vector<ChangedRecords> recordsOfRun(data::RunJournal& journal, qint64 run);

}  // namespace vatchange
