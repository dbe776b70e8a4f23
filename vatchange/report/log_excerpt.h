#pragma once

#include <QString>
#include <QStringList>

#include "data/engine/run_journal.h"
#include "vatchange/journal/run_attempts.h"

namespace vatchange {

/// A part of the change log; of a long one only the first and last lines.
struct LogExcerpt {
    static constexpr int kFirstLines = 400;
    static constexpr int kLastLines = 600;
    static constexpr int kLineLength = 600;  ///< characters; the rest of a longer line is left out

    QStringList first;
    qint64 leftOut = 0;  ///< lines between the two
    QStringList last;
    QString problem;  ///< why the log could not be read, in Finnish
};

/// Reads the bytes [from, to) of a log; `to` -1: to its end. Never throws.
LogExcerpt readLog(const QString& logName, qint64 from, qint64 to);

/// Reads the lines that an attempt of a run wrote. Of an attempt whose process died they end where
/// the next attempt of any run begins; of one whose place in the log is unknown they are the lines
/// from between its times. @throws data::DataError of the journal.
LogExcerpt logOfAttempt(data::RunJournal& journal, const QString& logName,
                        const RunAttempt& attempt);

}  // namespace vatchange
