#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"
#include "engines/data_names.h"

namespace engines {

/// File name of an embedded company's database inside the company's folder.
inline const QString kEmbeddedFileName = QStringLiteral("YRITYS.ZDB");

/// True when the folder holds an embedded company. False also for a folder that is not there.
/// @throws DataError(NoConnection) when the folder cannot be read.
bool hasEmbeddedDatabase(const QString& folder);

/// Opens the embedded database of a folder. @throws DataError: NoConnection when there is none,
/// Damaged when the file is not a company database or its catalogue disagrees with its tables,
/// ReadOnly ...
std::unique_ptr<Database> openEmbedded(const QString& companyName, const QString& folder);

/// Creates a new company database in the folder (made when missing) with the given tables and their
/// catalogue rows; the price level table gets its nine rows. @throws DataError; on failure nothing
/// is left behind.
void createEmbedded(const QString& folder, const std::vector<TableSource>& tables);

/// A consistent copy into a new file, safe while programs use the database. `progress` (may be
/// empty) gets pages done and in all; it returns false to stop, and the unfinished copy is removed.
void backupEmbedded(const QString& folder, const QString& targetFile,
                    const std::function<bool(int done, int total)>& progress);

/// Version of the SQLite library that the engine uses.
QString embeddedLibraryVersion();

/// Reads every record and every key of every table. @return one English line for each thing that is
/// wrong; empty when all is well.
QStringList checkEmbedded(const QString& folder);

}  // namespace engines
