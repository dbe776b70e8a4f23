#pragma once

#include <sqlite3.h>

#include <QString>
#include <functional>

namespace engines::embedded {

/// Copies a database as it stands now into a new file, in one read transaction: concurrent writes
/// stay out of it and do not restart it. `progress` (may be empty) gets pages done and total.
/// @return false if `progress` did. @throws DataError naming a file.
bool copyPages(sqlite3* source, const QString& from, sqlite3* target, const QString& to,
               const std::function<bool(int done, int total)>& progress);

}  // namespace engines::embedded
