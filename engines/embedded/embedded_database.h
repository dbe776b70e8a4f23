#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

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

enum class CopyPhase { Copying, Checking };
/// Gets how much of a phase is done (total 0: unknown); returns false to cancel. May be empty.
using CopyProgress = std::function<bool(CopyPhase phase, qint64 done, qint64 total)>;
enum class CopyCheck { None, Records };

/// Copies the database consistently into a new file while programs use it. With CopyCheck::Records
/// the copy is checked like checkEmbedded() does before it gets its name.
/// @return false if `progress` cancelled. @throws DataError, Damaged if the check found errors.
/// A cancelled or failed copy leaves nothing behind.
bool backupEmbedded(const QString& folder, const QString& targetFile, const CopyProgress& progress,
                    CopyCheck check = CopyCheck::None);

/// Replaces the database of a folder, which may be missing, by a copy of `backupFile`, checked as
/// above before anything is moved. The replaced file is kept as `keptFile` (in the same folder).
/// @return false if `progress` cancelled, with nothing changed.
/// @throws DataError, with nothing changed: Damaged (the backup), Locked (a program has the
/// database open), Io, DiskFull.
bool restoreEmbedded(const QString& folder, const QString& backupFile, const QString& keptFile,
                     const CopyProgress& progress);

/// Bytes of a folder's database with its write-ahead log.
qint64 embeddedSize(const QString& folder);

/// Copies the database consistently into an empty folder, as it stands now, and changes no byte of
/// its files: a write-ahead log that an earlier program left is read and stays as it is. Other
/// programs go on reading and writing. The copy is not made durable. `progress` (may be empty) gets
/// pages done and total; if it returns false, the copy stops.
/// @return false if stopped; the folder then holds a part. @throws DataError naming the database.
bool copyEmbedded(const QString& folder, const QString& targetFolder,
                  const std::function<bool(int done, int total)>& progress);

/// Creates a company database in an empty folder with the given tables of another engine: their
/// layouts, keys and records, under the same record ids. The catalogue's rows are its own. Not made
/// durable. `progress` gets a table with its records done and in all; false stops.
/// @return false if stopped. @throws DataError.
using TableProgress = std::function<bool(const QString& table, qint64 done, qint64 total)>;
bool createEmbeddedCopy(const QString& folder,
                        const std::vector<std::unique_ptr<TableFile>>& tables,
                        const TableProgress& progress);
/// Takes the runs of a run journal that stands in a file of its own. @throws DataError.
void importJournal(const QString& folder, const QString& journalFile);

/// Whether a process is in a run of the company (Database::beginRun). Creates no lock file.
bool runGoesOnInEmbedded(const QString& folder);

/// Version of the SQLite library.
QString embeddedLibraryVersion();

/// Reads every record and key of every table. @return one English line per error; empty if there
/// are none.
QStringList checkEmbedded(const QString& folder);
/// The same. `progress` gets the tables done and their number, often enough to keep a window alive;
/// returning false cancels, and nothing is returned.
std::optional<QStringList> checkEmbedded(const QString& folder,
                                         const std::function<bool(qint64, qint64)>& progress);

}  // namespace engines
