#pragma once

#include <QByteArray>
#include <QString>
#include <utility>

#include "data/record/record_codec.h"

/// Pieces that the codec's reading and writing share with its text forms.
namespace data {

/// Smallest and largest number that an integer field's bytes hold.
std::pair<qint64, qint64> integerRange(const TFieldCacheItem& field);

/// Why a number cannot be stored in an integer or float field; empty when it can.
QString integerProblem(const TFieldCacheItem& field, qint64 value);
QString floatProblem(const TFieldCacheItem& field, double value);

/// Characters that a string or memo field holds at most.
int textCapacity(const TFieldCacheItem& field);

/// The bytes of a text as its field stores them. @return why it cannot, empty when it can.
QString encodeText(const TFieldCacheItem& field, const QString& text, QByteArray& bytes);

/// yyyy-mm-dd or, when `compact` is allowed, yyyymmdd; invalid when it is no calendar day.
QDate parseDate(const QString& text, bool compactAllowed);

}  // namespace data
