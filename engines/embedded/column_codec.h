#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QString>

#include "data/record/record_layout.h"
#include "engines/data_names.h"

namespace engines::embedded {

/// SQL declaration of a field: name, type and collation.
QByteArray columnDeclaration(const QString& tableName, const TFieldCacheItem& field);
/// Collation of a field's column; "BINARY" if the declaration has none.
const char* columnCollation(const QString& tableName, const TFieldCacheItem& field);

/// Returns a record's field to SQL: numbers as numbers, booleans as 0 and 1, dates as yyyy-mm-dd,
/// times as hh:mm:ss, timestamps as yyyy-mm-dd hh:mm:ss in local time (empty date or timestamp: the
/// empty text), texts as UTF-8, binary as a blob.
void resultField(sqlite3_context* context, const TFieldCacheItem& field, const uchar* record);

/// Stores a SQL value in a field; NULL, and the empty text for a date or time, store the empty
/// value. A value equal to the stored one leaves the bytes unchanged.
/// @throws DataError(BadValue) naming table, field and value, without changing anything.
void storeField(const QString& tableName, const TFieldCacheItem& field, uchar* record,
                sqlite3_value* value);

}  // namespace engines::embedded
