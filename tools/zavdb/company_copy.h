#pragma once

#include <QString>
#include <QStringList>

#include "data/engine/engine.h"

namespace tools {

struct CopyResult {
    int tables = 0;
    qint64 records = 0;       ///< of all tables
    qint64 inserted = 0;      ///< by this call; the others by an earlier one
    QStringList notes;        ///< what was skipped and why, one line each
    QStringList differences;  ///< between source and copy; if any, the copy is unfinished
    QStringList findings;     ///< of the check of the copy, as in "zavdb check"
};

/// Copies every table of a company of any engine into a new embedded company in `folder` and
/// registers it: the source's layouts and keys, records byte for byte, and the catalogue's own rows
/// where they describe the copy. Also copies the company's definitions and INI files.
///
/// Builds the copy in a hidden folder inside `folder` and moves it into place after comparing it
/// with the source. Repeating a stopped call resumes it; after differences it copies those tables
/// again.
/// @throws CommandError, data::DataError.
CopyResult copyCompany(data::Database& source, const QString& sourceFolder,
                       const QString& targetName, const QString& folder);

/// Name of that hidden folder.
inline const QString kCopyFolder = QStringLiteral(".zavdb-copy");

}  // namespace tools
