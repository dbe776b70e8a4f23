#pragma once

#include <QDate>
#include <QString>

#include "data/value.h"

namespace data {

// Type conversions of field accessors. They never fail: what cannot be converted gives the empty
// value.

qint64 valueToInteger(const Value& value);  ///< truncates; saturates at 64 bits
double valueToFloat(const Value& value);    ///< texts may have a decimal comma or point
bool valueToBoolean(const Value& value);    ///< numbers: not 0; texts: "1", "true" and "K"
QDate valueToDate(const Value& value);      ///< texts as in dateFromText
/// Numbers in their shortest form, dates yyyy-mm-dd, times hh:mm:ss, booleans 0/1.
QString valueToPlainText(const Value& value);

/// yyyy-mm-dd (a time may follow after a blank), yyyymmdd or d.m.yyyy; else invalid.
QDate dateFromText(const QString& text);
/// A number with optional sign and decimal comma or point; otherwise 0, with `*ok` false.
double numberFromText(const QString& text, bool* ok = nullptr);

}  // namespace data
