#pragma once

#include <sqlite3.h>

#include <QSet>
#include <QString>

#include "engines/data_names.h"

namespace engines::embedded {

/// Path of a company's database file in its folder.
QString companyFile(const QString& folder);

/// Folded names of the tables whose records the file holds.
QSet<QString> storedTables(sqlite3* db);

}  // namespace engines::embedded
