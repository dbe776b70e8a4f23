#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>

#include "data/dictionary/field_cache_item.h"
#include "data/value.h"

namespace data {

// Reading and writing one field of a record's bytes. `record` points at the record's first byte;
// the field must lie within the record (RecordLayout checks that once). Writers throw
// DataError(BadValue) naming table, field and value when the value does not fit, and then change
// nothing. No function keeps a pointer.

/// The value of a field in the form that data::Value documents.
Value readValue(const TFieldCacheItem& field, const uchar* record);

/// Stores a value. Numbers may be given as texts or other numbers when they mean the same value
/// ("12" for 12, 1/0 for booleans, "yyyy-mm-dd" or "yyyymmdd" for dates); NULL stores the empty
/// value. A double set into an integer field must be whole. Single precision and Real48 round to
/// nearest.
void writeValue(const TFieldCacheItem& field, uchar* record, const Value& value,
                const QString& tableName);

/// The kind's empty value: 0, no text, no date.
void clearField(const TFieldCacheItem& field, uchar* record);

// The same without a Value in between, for hot paths. Each requires the kind it names.
qint64 readInteger(const TFieldCacheItem& field,
                   const uchar* record);  ///< any integer kind, booleans
double readFloat(const TFieldCacheItem& field, const uchar* record);
bool readBoolean(const TFieldCacheItem& field, const uchar* record);
QDate readDate(const TFieldCacheItem& field, const uchar* record);  ///< both date storages
QTime readTime(const TFieldCacheItem& field, const uchar* record);
QDateTime readTimestamp(const TFieldCacheItem& field, const uchar* record);
QString readText(const TFieldCacheItem& field, const uchar* record);  ///< strings and memos
/// The raw Windows-1252 bytes of a string or memo: pointer into the record and length.
QByteArrayView readTextBytes(const TFieldCacheItem& field, const uchar* record);

void writeInteger(const TFieldCacheItem& field, uchar* record, qint64 value, const QString& table);
void writeFloat(const TFieldCacheItem& field, uchar* record, double value, const QString& table);
void writeText(const TFieldCacheItem& field, uchar* record, const QString& text,
               const QString& table);

/// The text that CSV and SQL show: dates yyyy-mm-dd, times hh:mm:ss, timestamps yyyy-mm-dd
/// hh:mm:ss, booleans 0/1, floats in the shortest form that reads back to the same value of the
/// field's own precision, empty dates as the empty text. Raw bytes are hexadecimal.
QString valueToText(const TFieldCacheItem& field, const Value& value);
/// The reverse, for import. @return false with `*why` ("not a number", "text longer than 18
/// characters" ...) when the text is no value of the field.
bool textToValue(const TFieldCacheItem& field, const QString& text, Value& value, QString* why);

/// Shortest decimal form that reads back to the same double, with a decimal point and without
/// grouping or exponent for everyday sizes ("12.5", "1", "0.001").
QString shortestText(double value);
QString shortestText(float value);

/// Real48: six bytes, exponent first (bias 129), 39-bit fraction, sign in the top bit of the last.
double real48ToDouble(const uchar* bytes);
/// Rounds to nearest, ties to even. @return false when the value is too large (or not a number).
bool doubleToReal48(double value, uchar* bytes);

/// Days since 1899-12-30, the epoch of Storage::DateDouble.
double dateToDays(QDate date);
QDate daysToDate(double days);

}  // namespace data
