#pragma once

#include <QVariant>

namespace data {

/// A field's value outside the record bytes. What each kind of field gives and takes:
///   strings, memos       QString (characters of Windows-1252)
///   integers, unsigned   qint64
///   floats               double (a single-precision or Real48 field gives what it can hold)
///   booleans             bool
///   dates, times         QDate, QTime (an invalid one is the empty value)
///   timestamps           QDateTime in local time (invalid: empty)
///   raw and binary       QByteArray
/// An invalid QVariant is SQL's NULL; written to a field it stores the kind's empty value.
using Value = QVariant;

}  // namespace data
