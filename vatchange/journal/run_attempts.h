#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

#include "data/engine/run_journal.h"

namespace vatchange {

/// One attempt of a run: its first start or a resumption. Stored as a note of the run.
struct RunAttempt {
    QDateTime started;  ///< local time
    QDateTime ended;    ///< invalid while it goes on, and of one whose process died
    QString user;
    QString computer;
    /// Bytes of the change log, [logFrom, logTo), that the attempt wrote; logTo -1 of one whose
    /// process died; logFrom -1 if unknown.
    qint64 logFrom = -1;
    qint64 logTo = -1;
    qint64 lostLogLines = 0;  ///< that could not be written
    QString backupFile = {};  ///< the last known backup before it; empty if none is known
    QDateTime backupWhen = {};

    /// Seconds; 0 of one that did not end.
    qint64 seconds() const { return ended.isValid() ? started.secsTo(ended) : 0; }
};

/// The attempts of a run, oldest first. One that is not known (a run of an older version) is made
/// from the head, without a place in the log. @throws data::DataError.
std::vector<RunAttempt> runAttempts(data::RunJournal& journal, const data::JournalRun& run);

inline const QString kAttemptsNote = QStringLiteral("attempts");
QByteArray attemptsNote(const std::vector<RunAttempt>& attempts);

/// Adds an attempt to a run. @throws data::DataError.
void beginAttempt(data::RunJournal& journal, qint64 run, const RunAttempt& attempt);
/// Ends the run's last attempt: time, end in the log and lost lines of `end` are taken over.
/// @throws data::DataError.
void endAttempt(data::RunJournal& journal, qint64 run, const RunAttempt& end);

}  // namespace vatchange
