#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QString>
#include <vector>

#include "data/catalogue/catalogue.h"
#include "engines/data_names.h"

namespace engines::embedded {

/// Name of the SQLite table with the records of a table.
QString storedName(const QString& tableName);

/// Reads the catalogue of an embedded company.
/// @throws DataError(Damaged) naming the catalogue table that is missing or unreadable.
Catalogue readCatalogue(sqlite3* db);

/// Catalogue records for a new company.
struct CatalogueRows {
    std::vector<QByteArray> files;    ///< records of X$File
    std::vector<QByteArray> fields;   ///< records of X$Field
    std::vector<QByteArray> indexes;  ///< records of X$Index
};

/// Rows describing the tables, numbered in the given order.
/// @throws DataError(BadValue) if a name or number does not fit its catalogue field.
CatalogueRows catalogueRows(const std::vector<TableSource>& tables);

}  // namespace engines::embedded
