#pragma once

#include <QVariant>

namespace data {

/// A field's value outside the record bytes, by kind of field:
///   strings, memos       QString (Windows-1252 characters)
///   integers, unsigned   qint64
///   floats               double (single-precision and Real48 fields: rounded to their precision)
///   booleans             bool
///   dates, times         QDate, QTime (invalid: empty)
///   timestamps           QDateTime in local time (invalid: empty)
///   raw and binary       QByteArray
/// An invalid QVariant is SQL's NULL; written to a field it stores the kind's empty value.
using Value = QVariant;

}  // namespace data
