#pragma once

#include <sqlite3.h>

#include <QSet>
#include <QString>

#include "engines/data_names.h"

namespace engines::embedded {

/// Path of the database file in a company's folder.
QString companyFile(const QString& folder);

/// Folded names of the tables stored in the file.
QSet<QString> storedTables(sqlite3* db);

}  // namespace engines::embedded
