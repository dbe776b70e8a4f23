#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "data/engine/run_journal.h"

namespace vatchange {

// The results of rehearsals: the company's folder KOEAJO with a folder for each.

inline const QString kChangesFile = QStringLiteral("muutokset.csv");

/// Full path of the current company's folder KOEAJO.
QString rehearsalsFolder();

/// A run of a rehearsal, as the rehearsal's folder describes it.
struct RehearsedRun {
    QString folder;      ///< of the rehearsal, full path
    QString definition;  ///< its name
    QByteArray values;   ///< digest of its values: see valuesDigest()
    qint64 run = 0;      ///< its number in the copy's journal
    qint64 first = 0;    ///< seq of its changes in the list of changes: [first, last]
    qint64 last = 0;
    bool whole = false;    ///< it was not stopped
    bool rounded = false;  ///< SQL rounded its store prices: the engine is not the company's
};

/// Identifies a definition's values. Empty if the run has none.
QByteArray valuesDigest(data::RunJournal& journal, qint64 run);

/// Writes and reads the description of a rehearsal. @throws data::DataError.
void writeDescription(const QString& folder, const std::vector<RehearsedRun>& runs);
std::vector<RehearsedRun> readDescription(const QString& folder);

/// Folders of the company's rehearsals, full paths, newest first.
QStringList rehearsalFolders();

}  // namespace vatchange
