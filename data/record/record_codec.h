#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>

#include "data/dictionary/field_cache_item.h"
#include "data/value.h"

namespace data {

// Reading and writing one field of a record. `record` points at the record's first byte; the field
// must lie within the record (RecordLayout checks that once). Writers throw DataError(BadValue)
// naming table, field and value if the value does not fit, and then change nothing. No function
// keeps a pointer.

/// The field's value, as documented at data::Value.
Value readValue(const TFieldCacheItem& field, const uchar* record);

/// Stores a value. Texts and other numbers are converted if they mean the same value ("12" for 12,
/// 1/0 for booleans, "yyyy-mm-dd" or "yyyymmdd" for dates); NULL stores the empty value. A double
/// for an integer field must be whole. Single precision and Real48 round to nearest.
void writeValue(const TFieldCacheItem& field, uchar* record, const Value& value,
                const QString& tableName);

/// Stores the kind's empty value: 0, no text, no date.
void clearField(const TFieldCacheItem& field, uchar* record);

// Without a Value in between, for hot paths. The field must be of the kind in the name.
qint64 readInteger(const TFieldCacheItem& field,
                   const uchar* record);  ///< any integer kind, booleans
double readFloat(const TFieldCacheItem& field, const uchar* record);
bool readBoolean(const TFieldCacheItem& field, const uchar* record);
QDate readDate(const TFieldCacheItem& field, const uchar* record);  ///< both date storages
QTime readTime(const TFieldCacheItem& field, const uchar* record);
QDateTime readTimestamp(const TFieldCacheItem& field, const uchar* record);
QString readText(const TFieldCacheItem& field, const uchar* record);  ///< strings and memos
/// The raw Windows-1252 bytes of a string or memo: a view into the record.
QByteArrayView readTextBytes(const TFieldCacheItem& field, const uchar* record);

void writeInteger(const TFieldCacheItem& field, uchar* record, qint64 value, const QString& table);
void writeFloat(const TFieldCacheItem& field, uchar* record, double value, const QString& table);
void writeText(const TFieldCacheItem& field, uchar* record, const QString& text,
               const QString& table);

/// The text form of CSV and SQL: dates yyyy-mm-dd, times hh:mm:ss, timestamps yyyy-mm-dd hh:mm:ss,
/// booleans 0/1, floats in the shortest form that reads back equal in the field's precision, empty
/// dates as the empty text, raw bytes in hexadecimal.
QString valueToText(const TFieldCacheItem& field, const Value& value);
/// The inverse, for import. @return false and `*why` ("not a number", "text longer than 18
/// characters" ...) if the field cannot store the text's value.
bool textToValue(const TFieldCacheItem& field, const QString& text, Value& value, QString* why);

/// Shortest decimal form that reads back to the same double: decimal point, no grouping, no
/// exponent for everyday sizes ("12.5", "1", "0.001").
QString shortestText(double value);
QString shortestText(float value);

/// Real48: six bytes, exponent first (bias 129), 39-bit fraction, sign in the top bit of the last.
double real48ToDouble(const uchar* bytes);
/// Rounds to nearest, ties to even. @return false if the value is too large or not a number.
bool doubleToReal48(double value, uchar* bytes);

/// Days since 1899-12-30, the epoch of Storage::DateDouble.
double dateToDays(QDate date);
QDate daysToDate(double days);

}  // namespace data
