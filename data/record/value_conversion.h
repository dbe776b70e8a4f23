#pragma once

#include <QDate>
#include <QString>

#include "data/value.h"

namespace data {

// What a field's accessors give when asked for another type than its own. No value is an error:
// what cannot be converted is the empty value.

qint64 valueToInteger(const Value& value);  ///< truncates; beyond 64 bits the nearest end
double valueToFloat(const Value& value);    ///< a text may have a decimal comma or point
bool valueToBoolean(const Value& value);    ///< not 0; of texts "1", "true" and "K"
QDate valueToDate(const Value& value);      ///< texts as dateFromText
/// Numbers in their shortest form, dates yyyy-mm-dd, times hh:mm:ss, booleans 0/1.
QString valueToPlainText(const Value& value);

/// yyyy-mm-dd (a time may follow after a blank), yyyymmdd or d.m.yyyy; invalid when it is no date.
QDate dateFromText(const QString& text);
/// A number with a decimal comma or point, a sign allowed; 0 with `*ok` false when it is none.
double numberFromText(const QString& text, bool* ok = nullptr);

}  // namespace data
