#pragma once

#include <QByteArray>
#include <QString>
#include <utility>

#include "data/record/record_codec.h"

/// Helpers shared by the codec and the text conversions.
namespace data {

/// Smallest and largest number of an integer field.
std::pair<qint64, qint64> integerRange(const TFieldCacheItem& field);

/// Why an integer or float field cannot store a number; empty if it can.
QString integerProblem(const TFieldCacheItem& field, qint64 value);
QString floatProblem(const TFieldCacheItem& field, double value);

/// Maximum number of characters of a string or memo field.
int textCapacity(const TFieldCacheItem& field);

/// Encodes a text as its field stores it. @return the reason if it cannot be stored, else empty.
QString encodeText(const TFieldCacheItem& field, const QString& text, QByteArray& bytes);

/// yyyy-mm-dd or, if `compactAllowed`, yyyymmdd; invalid if it is not a calendar day.
QDate parseDate(const QString& text, bool compactAllowed);

}  // namespace data
