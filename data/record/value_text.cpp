#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "data/record/field_text.h"
#include "data/windows1252.h"

namespace data {

namespace {

// Numbers of these sizes are written without an exponent.
constexpr double kSmallestPlain = 1e-7;
constexpr double kLargestPlain = 1e16;

template <typename T>
QString shortest(T value) {
    if (value == 0)
        return QStringLiteral("0");  // also for -0.0
    const T size = std::abs(value);
    const bool plain =
        size >= static_cast<T>(kSmallestPlain) && size < static_cast<T>(kLargestPlain);
    std::array<char, 64> buffer;
    const auto result = plain ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                              std::chars_format::fixed)
                              : std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
}

// Shortest form that reads back to the same six bytes.
QString shortestReal48(double value) {
    std::array<uchar, 6> wanted;
    if (!doubleToReal48(value, wanted.data()))
        return shortest(value);
    std::array<char, 64> buffer;
    for (int digits = 0; digits < std::numeric_limits<double>::max_digits10; ++digits) {
        const auto printed = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                           std::chars_format::scientific, digits);
        double candidate = 0;
        std::from_chars(buffer.data(), printed.ptr, candidate);
        std::array<uchar, 6> bytes;
        if (doubleToReal48(candidate, bytes.data()) && bytes == wanted)
            return shortest(candidate);
    }
    return shortest(value);
}

QString dateText(const QDate& date) {
    if (!date.isValid())
        return QString();
    std::array<char, 32> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", date.year(),
                                     date.month(), date.day());
    return QString::fromLatin1(buffer.data(), length);
}

QString timeText(const QTime& time) {
    if (!time.isValid())
        return QString();
    std::array<char, 32> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%02d:%02d:%02d", time.hour(),
                                     time.minute(), time.second());
    return QString::fromLatin1(buffer.data(), length);
}

// The number in `count` digits from `from`; -1 if a character is not a digit.
int digitsAt(const QString& text, int from, int count) {
    int number = 0;
    for (int i = from; i < from + count; ++i) {
        const char16_t c = text.at(i).unicode();
        if (c < u'0' || c > u'9')
            return -1;
        number = number * 10 + (c - u'0');
    }
    return number;
}

// hh:mm:ss; invalid if it is not a time of day.
QTime parseTime(const QString& text) {
    if (text.size() != 8 || text.at(2) != QLatin1Char(':') || text.at(5) != QLatin1Char(':'))
        return QTime();
    return QTime(digitsAt(text, 0, 2), digitsAt(text, 3, 2), digitsAt(text, 6, 2));
}

QDateTime parseTimestamp(const QString& text) {
    if (text.size() != 19 || text.at(10) != QLatin1Char(' '))
        return QDateTime();
    const QDate date = parseDate(text.left(10), false);
    const QTime time = parseTime(text.mid(11));
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::LocalTime) : QDateTime();
}

// Optional sign and a number for std::from_chars; no blanks, grouping, hexadecimal or "inf".
template <typename T>
bool parseNumber(const QString& text, T& number, std::errc& error) {
    const QByteArray bytes = text.toLatin1();  // characters outside Latin-1 become '?'
    const char* first = bytes.constData();
    const char* last = first + bytes.size();
    if (first != last && *first == '+')
        ++first;
    const char* digits =
        first != last && *first == '-' && first == bytes.constData() ? first + 1 : first;
    if (digits == last || !((*digits >= '0' && *digits <= '9') || *digits == '.'))
        return false;
    const auto result = std::from_chars(first, last, number);
    error = result.ec;
    return result.ptr == last && result.ec != std::errc::invalid_argument;
}

bool fail(QString* why, const QString& reason) {
    if (why != nullptr)
        *why = reason;
    return false;
}

bool parseInteger(const TFieldCacheItem& field, const QString& text, Value& value, QString* why) {
    qint64 number = 0;
    std::errc error{};
    if (!parseNumber(text, number, error))
        return fail(why, QStringLiteral("not a whole number"));
    const auto [smallest, largest] = integerRange(field);
    if (error != std::errc{} || number < smallest || number > largest)
        return fail(why, QStringLiteral("out of range %1..%2").arg(smallest).arg(largest));
    value = number;
    return true;
}

bool parseFloat(const TFieldCacheItem& field, const QString& text, Value& value, QString* why) {
    double number = 0;
    std::errc error{};
    bool parsed = false;
    if (field.storage == Storage::Float && field.storedLength == 4) {
        float single = 0;
        parsed = parseNumber(text, single, error);
        number = static_cast<double>(single);
    } else {
        parsed = parseNumber(text, number, error);
    }
    if (!parsed)
        return fail(why, QStringLiteral("not a number"));
    if (error != std::errc{})
        return fail(why, QStringLiteral("too large or too small for the field"));
    if (const QString problem = floatProblem(field, number); !problem.isEmpty())
        return fail(why, problem);
    value = number;
    return true;
}

bool parseHex(const TFieldCacheItem& field, const QString& text, Value& value, QString* why) {
    const QByteArray digits = text.toLatin1();
    const bool clean = std::all_of(digits.begin(), digits.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    });
    if (!clean || digits.size() % 2 != 0)
        return fail(why, QStringLiteral("not hexadecimal bytes"));
    const int room = field.storedLength - (field.storage == Storage::LVar ? 2 : 0);
    if (digits.size() / 2 > room)
        return fail(why, QStringLiteral("longer than %1 bytes").arg(room));
    value = QByteArray::fromHex(digits);
    return true;
}

// The kind's empty value.
Value emptyValue(const TFieldCacheItem& field) {
    switch (field.kind()) {
        case Kind::String:
            return QString();
        case Kind::Memo:
            return field.storage == Storage::Blob ? Value(QByteArray()) : Value(QString());
        case Kind::Date:
            return QDate();
        case Kind::Time:
            return QTime();
        case Kind::Timestamp:
            return QDateTime();
        case Kind::Boolean:
            return false;
        case Kind::Float:
            return 0.0;
        case Kind::RawBytes:
        case Kind::VarBinary:
            return QByteArray();
        default:
            return qint64{0};
    }
}

}  // namespace

std::pair<qint64, qint64> integerRange(const TFieldCacheItem& field) {
    const bool isUnsigned = field.storage == Storage::UnsignedBinary;  // of 4 bytes at most
    const int bits = 8 * std::clamp<int>(field.storedLength, 1, isUnsigned ? 4 : 8);
    const qint64 largest =
        std::numeric_limits<qint64>::max() >> (isUnsigned ? 63 - bits : 64 - bits);
    return {isUnsigned ? 0 : -largest - 1, largest};
}

QString integerProblem(const TFieldCacheItem& field, qint64 value) {
    const auto [smallest, largest] = integerRange(field);
    if (value >= smallest && value <= largest)
        return QString();
    return QStringLiteral("out of range %1..%2").arg(smallest).arg(largest);
}

QString floatProblem(const TFieldCacheItem& field, double value) {
    if (!std::isfinite(value))
        return QStringLiteral("not a finite number");
    bool fits = true;
    if (field.storage == Storage::Real48) {
        std::array<uchar, 6> bytes;
        fits = doubleToReal48(value, bytes.data());
    } else if (field.storedLength == 4) {
        fits = std::isfinite(static_cast<float>(value));
    }
    return fits ? QString() : QStringLiteral("too large for the field");
}

int textCapacity(const TFieldCacheItem& field) {
    switch (field.storage) {
        case Storage::LString:
            return std::min(field.storedLength - 1, 255);
        case Storage::ZString:
        case Storage::Note:
            return field.storedLength - 1;
        case Storage::String:
            return field.storedLength;
        default:
            return 0;
    }
}

QString encodeText(const TFieldCacheItem& field, const QString& text, QByteArray& bytes) {
    const int capacity = textCapacity(field);
    if (text.size() > capacity)
        return QStringLiteral("text longer than %1 characters").arg(capacity);
    qsizetype bad = 0;
    if (!toWindows1252(text, bytes, &bad)) {
        // Show a surrogate pair as one character.
        const bool pair = text.at(bad).isHighSurrogate() && bad + 1 < text.size() &&
                          text.at(bad + 1).isLowSurrogate();
        const QString character = text.mid(bad, pair ? 2 : 1);
        const uint code =
            pair ? QChar::surrogateToUcs4(text.at(bad), text.at(bad + 1)) : text.at(bad).unicode();
        return QStringLiteral("character %1 (U+%2) is not in Windows-1252")
            .arg(character, QStringLiteral("%1").arg(code, 4, 16, QLatin1Char('0')).toUpper());
    }
    const bool terminated = field.storage == Storage::ZString || field.storage == Storage::Note;
    if (terminated && bytes.contains('\0'))
        return QStringLiteral("text holds a zero character, which would end it");
    return QString();
}

QDate parseDate(const QString& text, bool compactAllowed) {
    if (text.size() == 10 && text.at(4) == QLatin1Char('-') && text.at(7) == QLatin1Char('-')) {
        const int year = digitsAt(text, 0, 4);
        return year < 1 ? QDate() : QDate(year, digitsAt(text, 5, 2), digitsAt(text, 8, 2));
    }
    if (compactAllowed && text.size() == 8) {
        const int year = digitsAt(text, 0, 4);
        return year < 1 ? QDate() : QDate(year, digitsAt(text, 4, 2), digitsAt(text, 6, 2));
    }
    return QDate();
}

QString valueToText(const TFieldCacheItem& field, const Value& value) {
    if (!value.isValid())
        return QString();
    switch (field.kind()) {
        case Kind::Date:
            return dateText(value.toDate());
        case Kind::Time:
            return timeText(value.toTime());
        case Kind::Timestamp: {
            const QDateTime time = value.toDateTime();
            return time.isValid() ? dateText(time.date()) + QLatin1Char(' ') + timeText(time.time())
                                  : QString();
        }
        case Kind::Boolean:
            return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
        case Kind::Float:
            if (field.storage == Storage::Real48)
                return shortestReal48(value.toDouble());
            if (field.storedLength == 4)
                return shortestText(static_cast<float>(value.toDouble()));
            return shortestText(value.toDouble());
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            return QString::number(value.toLongLong());
        case Kind::String:
        case Kind::Memo:
        case Kind::RawBytes:
        case Kind::VarBinary:
            break;
    }
    if (value.typeId() == QMetaType::QByteArray)
        return QString::fromLatin1(value.toByteArray().toHex());
    return value.toString();
}

bool textToValue(const TFieldCacheItem& field, const QString& text, Value& value, QString* why) {
    if (text.isEmpty()) {
        value = emptyValue(field);
        return true;
    }
    switch (field.kind()) {
        case Kind::String:
        case Kind::Memo: {
            if (field.storage == Storage::Blob)
                return parseHex(field, text, value, why);
            QByteArray bytes;
            const QString problem = encodeText(field, text, bytes);
            if (!problem.isEmpty())
                return fail(why, problem);
            value = text;
            return true;
        }
        case Kind::Date: {
            const QDate date = parseDate(text, false);
            if (!date.isValid())
                return fail(why, QStringLiteral("not a date (yyyy-mm-dd)"));
            if (field.storage == Storage::DateDouble && dateToDays(date) == 0)
                return fail(why, QStringLiteral("this day stands for the empty date"));
            value = date;
            return true;
        }
        case Kind::Time: {
            const QTime time = parseTime(text);
            if (!time.isValid())
                return fail(why, QStringLiteral("not a time (hh:mm:ss)"));
            value = time;
            return true;
        }
        case Kind::Timestamp: {
            const QDateTime time = parseTimestamp(text);
            if (!time.isValid())
                return fail(why, QStringLiteral("not a timestamp (yyyy-mm-dd hh:mm:ss)"));
            value = time;
            return true;
        }
        case Kind::Boolean:
            if (text != QLatin1String("0") && text != QLatin1String("1"))
                return fail(why, QStringLiteral("not 0 or 1"));
            value = text == QLatin1String("1");
            return true;
        case Kind::Float:
            return parseFloat(field, text, value, why);
        case Kind::RawBytes:
        case Kind::VarBinary:
            return parseHex(field, text, value, why);
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            break;
    }
    return parseInteger(field, text, value, why);
}

QString shortestText(double value) {
    return shortest(value);
}

QString shortestText(float value) {
    return shortest(value);
}

}  // namespace data
