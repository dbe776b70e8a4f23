#include "data/record/value_conversion.h"

#include <QDateTime>
#include <QMetaType>
#include <cmath>
#include <limits>

#include "data/record/field_text.h"
#include "data/record/record_codec.h"

namespace data {

namespace {

qint64 truncated(double number) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (std::isnan(number))
        return 0;
    if (number >= kLimit)
        return std::numeric_limits<qint64>::max();
    if (number < -kLimit)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(number);
}

}  // namespace

qint64 valueToInteger(const Value& value) {
    switch (value.typeId()) {
        case QMetaType::LongLong:
        case QMetaType::Int:
        case QMetaType::Bool:
            return value.toLongLong();
        case QMetaType::QString: {
            bool isWhole = false;
            const qint64 number = value.toString().trimmed().toLongLong(&isWhole);
            return isWhole ? number : truncated(valueToFloat(value));
        }
        default:
            return truncated(valueToFloat(value));
    }
}

double valueToFloat(const Value& value) {
    switch (value.typeId()) {
        case QMetaType::QString:
            return numberFromText(value.toString());
        case QMetaType::QDate:
        case QMetaType::QDateTime:
            return dateToDays(value.toDate());
        default:
            return value.toDouble();
    }
}

bool valueToBoolean(const Value& value) {
    if (value.typeId() != QMetaType::QString)
        return valueToFloat(value) != 0;
    const QString text = value.toString().trimmed();
    return text == QLatin1String("1") ||
           text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 ||
           text.compare(QLatin1String("K"), Qt::CaseInsensitive) == 0;
}

QDate valueToDate(const Value& value) {
    switch (value.typeId()) {
        case QMetaType::QDate:
        case QMetaType::QDateTime:
            return value.toDate();
        case QMetaType::QString:
            return dateFromText(value.toString());
        case QMetaType::Double:
            return daysToDate(value.toDouble());
        default:
            return QDate();
    }
}

QString valueToPlainText(const Value& value) {
    switch (value.typeId()) {
        case QMetaType::Double:
            return shortestText(value.toDouble());
        case QMetaType::Float:
            return shortestText(value.toFloat());
        case QMetaType::Bool:
            return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
        case QMetaType::QDate:
            return value.toDate().toString(Qt::ISODate);
        case QMetaType::QTime:
            return value.toTime().toString(QStringLiteral("hh:mm:ss"));
        case QMetaType::QDateTime:
            return value.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        default:
            return value.toString();
    }
}

QDate dateFromText(const QString& text) {
    const QString trimmed = text.trimmed();
    const QDate date = parseDate(trimmed.section(QLatin1Char(' '), 0, 0), true);
    if (date.isValid())
        return date;
    const QStringList parts = trimmed.split(QLatin1Char('.'));
    if (parts.size() != 3 || parts[2].size() != 4)
        return QDate();
    bool dayOk = false;
    bool monthOk = false;
    bool yearOk = false;
    const int day = parts[0].toInt(&dayOk);
    const int month = parts[1].toInt(&monthOk);
    const int year = parts[2].toInt(&yearOk);
    return dayOk && monthOk && yearOk && year > 0 ? QDate(year, month, day) : QDate();
}

double numberFromText(const QString& text, bool* ok) {
    QString plain = text.trimmed();
    plain.replace(QLatin1Char(','), QLatin1Char('.'));
    bool isNumber = false;
    double number = plain.toDouble(&isNumber);
    if (!std::isfinite(number))
        isNumber = false;
    if (ok != nullptr)
        *ok = isNumber;
    return isNumber ? number : 0;
}

}  // namespace data
