#pragma once

#include <QDateTime>
#include <QString>
#include <functional>
#include <optional>

namespace company {

/// A backup of a company's database.
struct Backup {
    QString file;  ///< full path
    QDateTime when;
    qint64 bytes = 0;
};

enum class BackupPhase { Copying, Checking };
/// Gets the phase and how much of it is done; returns false to cancel. May be empty.
using BackupProgress = std::function<bool(BackupPhase phase, qint64 done, qint64 total)>;

/// Why the company's database cannot be backed up or restored by this program, in Finnish: it is on
/// the database server, whose own backups have to be used. Empty if it can.
QString backupProblem(const QString& companyName);

/// "Esimerkki 2024-09-01 003000.ZDB"
QString backupFileName(const QString& companyName, const QDateTime& when);

/// Copies the company's database consistently into a new file while programs use it, checks every
/// record and key of the copy, then gives it its name and records it as the company's last
/// backup. A cancelled or failed backup leaves nothing behind. The file's folder must exist.
/// @return the backup; nothing if it was cancelled.
/// @throws data::DataError (Damaged: the copy has errors, the first ones are in the text;
/// DiskFull).
std::optional<Backup> makeBackup(const QString& companyName, const QString& file,
                                 const BackupProgress& progress = {});

/// The last backup that was made of the company by this program or zavdb, wherever it is now.
std::optional<Backup> lastBackup(const QString& companyName);

/// Puts a backup in the place of the company's database, which is kept beside it under a name with
/// the time. The backup is copied into the company's folder and checked before anything is
/// replaced; a damaged one, and one while any program uses the company, are refused. This process
/// must have closed the company's database.
/// @return where the replaced database is kept, if there was one; empty if it was cancelled.
/// @throws data::DataError (Locked: somebody uses the company).
QString restoreBackup(const QString& companyName, const QString& file,
                      const BackupProgress& progress = {});

}  // namespace company
