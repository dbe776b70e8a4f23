#pragma once

#include <QString>
#include <QStringList>

#include "data/engine/engine.h"

namespace tools {

struct CopyResult {
    int tables = 0;
    qint64 records = 0;       ///< of all tables
    qint64 inserted = 0;      ///< by this call; the others were there from an earlier one
    QStringList notes;        ///< what was left out and why, one line each
    QStringList differences;  ///< source against copy; the copy is not finished when there are any
    QStringList findings;     ///< of the check of the copy, as "zavdb check" tells them
};

/// Copies every table of a company, of whatever engine, into a new embedded company in `folder` and
/// registers it: layouts and keys as the source opens them, records byte for byte, the
/// catalogue's own rows too where they describe the copy. The company's definitions and INI files
/// come along.
///
/// The copy grows in a hidden folder inside `folder` and moves to its place when it was compared
/// with the source. A call that was stopped goes on where it was when it is repeated; so does one
/// after differences, which copies the tables concerned anew.
/// @throws CommandError, data::DataError.
CopyResult copyCompany(data::Database& source, const QString& sourceFolder,
                       const QString& targetName, const QString& folder);

/// Name of that hidden folder.
inline const QString kCopyFolder = QStringLiteral(".zavdb-copy");

}  // namespace tools
