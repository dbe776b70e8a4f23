#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <set>

#include "data/engine/run_journal.h"

namespace vatchange {

/// How the steps of a run ended, stored as a note once they are through: what verification needs
/// to tell why a record was left. A resumed run removes it when it starts.
struct RunOutcome {
    bool stopped = false;
    std::set<QString> failedTables =
        {};  ///< tables whose step failed, in capitals (TUOTE, MTRIVI ...)
    std::set<QString> passedOver = {};  ///< numbers of products that another program held
    std::set<QString> overLimit = {};   ///< numbers of products that the percent limit passed over
    bool limitedUnderLock = false;  ///< some of them when their turn came: their rows are changed
    QStringList failures = {};      ///< error messages of the steps, in step order
};

inline const QString kOutcomeNote = QStringLiteral("outcome");

QByteArray outcomeNote(const RunOutcome& outcome);
RunOutcome outcomeOfNote(const QByteArray& note);

}  // namespace vatchange
