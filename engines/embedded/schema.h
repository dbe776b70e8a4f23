#pragma once

#include <sqlite3.h>

#include <QString>
#include <QStringList>

#include "engines/data_names.h"

namespace engines::embedded {

/// The SQLite tables that the engine keeps beside the company's: those of the run journal and the
/// next ids. They are no tables of the company.
bool isInternalTable(const QString& name);

/// What the schema of a database file holds that this program did not make: triggers, views,
/// tables, indexes, or one of the program's own with another definition (a condition, a check, a
/// column). Such objects could change or refuse what is stored. @return one English line for each.
QStringList foreignObjects(sqlite3* db);

/// Refuses a file that holds such objects. @throws DataError(Damaged) naming file and objects.
void requireOwnSchema(sqlite3* db, const QString& fileName);

}  // namespace engines::embedded
