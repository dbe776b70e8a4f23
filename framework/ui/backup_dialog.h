#pragma once

#include <QWidget>
#include <optional>

#include "company/backup.h"

namespace framework {

/// Asks where to, suggesting the last backup's folder, and makes a checked backup of the current
/// company with progress.
/// @return the backup; nothing if the user left it, the copy failed or the company's database is
/// not this program's to back up: the user has been told.
std::optional<company::Backup> takeBackup(QWidget* parent);

/// Asks for a backup of the current company, tells what restoring it means and restores it with
/// progress. `closeCompany` is called before the database is replaced and has to close it in this
/// process; the next use opens it again.
/// @return whether the database was replaced; otherwise the user has been told why.
bool restoreBackup(QWidget* parent, const std::function<void()>& closeCompany);

/// "1.9.2024 klo 0.15, /kopiot/Esimerkki 2024-09-01 001500.ZDB (12,3 Mt)"
QString backupText(const company::Backup& backup);

}  // namespace framework
