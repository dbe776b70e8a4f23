#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"
#include "engines/data_names.h"

namespace engines {

/// File name of the database in an embedded company's folder.
inline const QString kEmbeddedFileName = QStringLiteral("YRITYS.ZDB");

/// True when the folder holds an embedded company. False also for a folder that is not there.
/// @throws DataError(NoConnection) when the folder cannot be read.
bool hasEmbeddedDatabase(const QString& folder);

/// Opens the embedded database of a folder. @throws DataError: NoConnection (no such file), Damaged
/// (not a company database, or its catalogue disagrees with its tables), ReadOnly ...
std::unique_ptr<Database> openEmbedded(const QString& companyName, const QString& folder);

/// Creates a company database in the folder (created if missing) with the given tables and their
/// catalogue rows; the price level table gets its nine rows. @throws DataError; leaves nothing
/// behind on failure.
void createEmbedded(const QString& folder, const std::vector<TableSource>& tables);

/// Copies the database consistently into a new file while programs use it. `progress` (may be
/// empty) gets pages done and total; if it returns false, the copy stops and is deleted.
void backupEmbedded(const QString& folder, const QString& targetFile,
                    const std::function<bool(int done, int total)>& progress);

/// Version of the SQLite library.
QString embeddedLibraryVersion();

/// Reads every record and key of every table. @return one English line per error; empty if there
/// are none.
QStringList checkEmbedded(const QString& folder);

}  // namespace engines
