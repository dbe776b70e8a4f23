#include "data/record/record_codec.h"

#include <QMetaType>
#include <QtEndian>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "data/error.h"
#include "data/record/field_text.h"
#include "data/windows1252.h"

namespace data {

namespace {

// 100 ns units from 0001-01-01 to 1970-01-01, the first unit after the year 9999, and units per ms.
constexpr quint64 kTicksAtUnixEpoch = 621355968000000000ULL;
constexpr quint64 kTicksEnd = 3155378976000000000ULL;
constexpr quint64 kTicksPerMs = 10000;

// Julian day number of 1899-12-30, day 0 of Storage::DateDouble.
constexpr qint64 kDayZero = 2415019;
constexpr int kMaxYear = 9999;

template <typename T>
T load(const uchar* bytes) {
    return qFromLittleEndian<T>(bytes);
}

template <typename T>
void store(uchar* bytes, T value) {
    qToLittleEndian<T>(value, bytes);
}

bool isStorableYear(const QDate& date) {
    return date.year() >= 1 && date.year() <= kMaxYear;
}

// The value for an error message.
QString shown(const Value& value) {
    switch (value.typeId()) {
        case QMetaType::Double:
        case QMetaType::Float:
            return shortestText(value.toDouble());
        case QMetaType::QDate:
            return value.toDate().toString(Qt::ISODate);
        case QMetaType::QTime:
            return value.toTime().toString(Qt::ISODate);
        case QMetaType::QDateTime:
            return value.toDateTime().toString(Qt::ISODate);
        case QMetaType::QByteArray:
            return QString::fromLatin1(value.toByteArray().toHex());
        default:
            return value.toString();
    }
}

[[noreturn]] void refuse(const TFieldCacheItem& field, const QString& table, const Value& value,
                         const QString& why) {
    throw DataError(ErrorKind::BadValue, table,
                    QStringLiteral("field %1, value \"%2\": %3").arg(field.name, shown(value), why))
        .inFinnish(QStringLiteral("kenttä %1, arvo \"%2\"").arg(field.name, shown(value)));
}

// Length of a text without padding. Zero bytes count as padding: other programs write them.
qsizetype paddedLength(const uchar* bytes, qsizetype length) {
    while (length > 0 && (bytes[length - 1] == ' ' || bytes[length - 1] == 0))
        --length;
    return length;
}

void writeBoolean(const TFieldCacheItem& field, uchar* record, bool value) {
    uchar* at = record + field.offset;
    if (field.storage == Storage::Bit) {
        *at = static_cast<uchar>(value ? *at | field.mask : *at & ~field.mask);
        return;
    }
    std::memset(at, 0, field.storedLength);
    *at = value ? 1 : 0;
}

void writeDate(const TFieldCacheItem& field, uchar* record, const QDate& date,
               const QString& table) {
    if (!date.isValid()) {
        clearField(field, record);
        return;
    }
    if (!isStorableYear(date))
        refuse(field, table, date, QStringLiteral("year outside 1..9999"));
    uchar* at = record + field.offset;
    if (field.storage == Storage::DateDouble) {
        const double days = dateToDays(date);
        if (days == 0)
            refuse(field, table, date, QStringLiteral("this day stands for the empty date"));
        store(at, std::bit_cast<quint64>(days));
        return;
    }
    at[0] = static_cast<uchar>(date.day());
    at[1] = static_cast<uchar>(date.month());
    store(at + 2, static_cast<quint16>(date.year()));
}

void writeTime(const TFieldCacheItem& field, uchar* record, const QTime& time) {
    if (!time.isValid()) {
        clearField(field, record);
        return;
    }
    uchar* at = record + field.offset;
    at[0] = static_cast<uchar>(time.msec() / 10);
    at[1] = static_cast<uchar>(time.second());
    at[2] = static_cast<uchar>(time.minute());
    at[3] = static_cast<uchar>(time.hour());
}

void writeTimestamp(const TFieldCacheItem& field, uchar* record, const QDateTime& time,
                    const QString& table) {
    if (!time.isValid()) {
        clearField(field, record);
        return;
    }
    // The time zone can move the first and last day out of range.
    const QDateTime utc = time.toUTC();
    if (!isStorableYear(utc.date()))
        refuse(field, table, time, QStringLiteral("year outside 1..9999"));
    const auto units = static_cast<quint64>(utc.toMSecsSinceEpoch()) * kTicksPerMs;
    store(record + field.offset, units + kTicksAtUnixEpoch);
}

void writeBytes(const TFieldCacheItem& field, uchar* record, const QByteArray& bytes,
                const QString& table) {
    const bool counted = field.storage == Storage::LVar;
    const int room = field.storedLength - (counted ? 2 : 0);
    if (bytes.size() > room)
        refuse(field, table, bytes, QStringLiteral("longer than %1 bytes").arg(room));
    uchar* at = record + field.offset;
    std::memset(at, 0, field.storedLength);
    if (counted)
        store(at, static_cast<quint16>(bytes.size()));
    std::memcpy(at + (counted ? 2 : 0), bytes.constData(), static_cast<size_t>(bytes.size()));
}

QByteArray readBytes(const TFieldCacheItem& field, const uchar* record) {
    const auto* at = reinterpret_cast<const char*>(record + field.offset);
    if (field.storage != Storage::LVar)
        return QByteArray(at, field.storedLength);
    const int length = std::min<int>(load<quint16>(record + field.offset), field.storedLength - 2);
    return QByteArray(at + 2, length);
}

bool isWhole(double value) {
    return std::trunc(value) == value && value >= -9223372036854775808.0 &&
           value < 9223372036854775808.0;
}

// Converts a value of another type to a whole number for an integer or boolean field.
bool toWhole(const Value& value, qint64& whole) {
    switch (value.typeId()) {
        case QMetaType::Double:
        case QMetaType::Float: {
            const double number = value.toDouble();
            if (!isWhole(number))
                return false;
            whole = static_cast<qint64>(number);
            return true;
        }
        case QMetaType::ULongLong:
            if (value.toULongLong() > static_cast<quint64>(std::numeric_limits<qint64>::max()))
                return false;
            [[fallthrough]];
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
            whole = value.toLongLong();
            return true;
        default:
            return false;
    }
}

bool isText(const Value& value) {
    return value.typeId() == QMetaType::QString;
}

void writeNumber(const TFieldCacheItem& field, uchar* record, const Value& value,
                 const QString& table) {
    if (field.kind() == Kind::Float) {
        bool ok = false;
        const double number = value.toDouble(&ok);
        if (!ok || value.typeId() == QMetaType::QByteArray)
            refuse(field, table, value, QStringLiteral("not a number"));
        writeFloat(field, record, number, table);
        return;
    }
    qint64 whole = 0;
    if (!toWhole(value, whole))
        refuse(field, table, value, QStringLiteral("not a whole number"));
    if (field.kind() != Kind::Boolean)
        writeInteger(field, record, whole, table);
    else if (whole == 0 || whole == 1)
        writeBoolean(field, record, whole == 1);
    else
        refuse(field, table, value, QStringLiteral("not 0 or 1"));
}

QString asText(const Value& value) {
    if (value.typeId() == QMetaType::QByteArray)
        return fromWindows1252(value.toByteArray());
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    return shown(value);
}

}  // namespace

// --- reading

qint64 readInteger(const TFieldCacheItem& field, const uchar* record) {
    const uchar* at = record + field.offset;
    switch (field.storage) {
        case Storage::Bit:
            return (*at & field.mask) != 0 ? 1 : 0;
        case Storage::Logical:
            return std::any_of(at, at + field.storedLength, [](uchar b) { return b != 0; }) ? 1 : 0;
        case Storage::UnsignedBinary:
            switch (field.storedLength) {
                case 1:
                    return *at;
                case 2:
                    return load<quint16>(at);
                default:
                    return load<quint32>(at);
            }
        default:
            switch (field.storedLength) {
                case 1:
                    return static_cast<qint8>(*at);
                case 2:
                    return load<qint16>(at);
                case 4:
                    return load<qint32>(at);
                default:
                    return load<qint64>(at);
            }
    }
}

double readFloat(const TFieldCacheItem& field, const uchar* record) {
    const uchar* at = record + field.offset;
    if (field.storage == Storage::Real48)
        return real48ToDouble(at);
    if (field.storedLength == 4)
        return static_cast<double>(std::bit_cast<float>(load<quint32>(at)));
    return std::bit_cast<double>(load<quint64>(at));
}

bool readBoolean(const TFieldCacheItem& field, const uchar* record) {
    return readInteger(field, record) != 0;
}

QDate readDate(const TFieldCacheItem& field, const uchar* record) {
    const uchar* at = record + field.offset;
    if (field.storage == Storage::DateDouble)
        return daysToDate(std::bit_cast<double>(load<quint64>(at)));
    const QDate date(load<quint16>(at + 2), at[1], at[0]);
    return date.isValid() && isStorableYear(date) ? date : QDate();
}

QTime readTime(const TFieldCacheItem& field, const uchar* record) {
    const uchar* at = record + field.offset;
    return QTime(at[3], at[2], at[1], at[0] * 10);
}

QDateTime readTimestamp(const TFieldCacheItem& field, const uchar* record) {
    const auto ticks = load<quint64>(record + field.offset);
    if (ticks < kTicksPerMs || ticks >= kTicksEnd)
        return QDateTime();
    // Whole milliseconds since the first day: rounds times before 1970 in the same direction.
    const qint64 ms = static_cast<qint64>(ticks / kTicksPerMs) -
                      static_cast<qint64>(kTicksAtUnixEpoch / kTicksPerMs);
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::LocalTime);
}

QByteArrayView readTextBytes(const TFieldCacheItem& field, const uchar* record) {
    const uchar* at = record + field.offset;
    qsizetype length = field.storedLength;
    switch (field.storage) {
        case Storage::LString:
            return QByteArrayView(at + 1, std::min<qsizetype>(*at, length - 1));
        case Storage::String:
            return QByteArrayView(at, paddedLength(at, length));
        case Storage::ZString:
        case Storage::Note:
            --length;  // the last byte can only be the terminator
            if (const void* end = std::memchr(at, 0, static_cast<size_t>(length)))
                length = static_cast<const uchar*>(end) - at;
            return QByteArrayView(at, length);
        default:
            return QByteArrayView();  // a BLOB's text is outside the fixed record
    }
}

QString readText(const TFieldCacheItem& field, const uchar* record) {
    const QByteArrayView bytes = readTextBytes(field, record);
    return fromWindows1252(bytes.data(), bytes.size());
}

Value readValue(const TFieldCacheItem& field, const uchar* record) {
    switch (field.kind()) {
        case Kind::String:
            return readText(field, record);
        case Kind::Memo:
            if (field.storage == Storage::Blob)
                return readBytes(field, record);
            return readText(field, record);
        case Kind::Date:
            return readDate(field, record);
        case Kind::Time:
            return readTime(field, record);
        case Kind::Timestamp:
            return readTimestamp(field, record);
        case Kind::Boolean:
            return readBoolean(field, record);
        case Kind::Float:
            return readFloat(field, record);
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            return readInteger(field, record);
        case Kind::RawBytes:
        case Kind::VarBinary:
            break;
    }
    return readBytes(field, record);
}

// --- writing

void clearField(const TFieldCacheItem& field, uchar* record) {
    if (field.storage == Storage::Bit)
        writeBoolean(field, record, false);
    else
        std::memset(record + field.offset,
                    field.kind() == Kind::String && field.storage == Storage::String ? ' ' : 0,
                    field.storedLength);
}

void writeInteger(const TFieldCacheItem& field, uchar* record, qint64 value, const QString& table) {
    if (field.kind() == Kind::Boolean) {
        writeNumber(field, record, value, table);
        return;
    }
    const auto [smallest, largest] = integerRange(field);
    if (value < smallest || value > largest)
        refuse(field, table, value, integerProblem(field, value));
    uchar* at = record + field.offset;
    switch (field.storedLength) {
        case 1:
            *at = static_cast<uchar>(value & 0xFF);
            break;
        case 2:
            store(at, static_cast<quint16>(value & 0xFFFF));
            break;
        case 4:
            store(at, static_cast<quint32>(value & 0xFFFFFFFF));
            break;
        default:
            store(at, value);
    }
}

void writeFloat(const TFieldCacheItem& field, uchar* record, double value, const QString& table) {
    // + 0.0 turns -0.0 into 0.0: equal values are stored as equal bytes.
    const double number = value + 0.0;
    uchar* at = record + field.offset;
    if (field.storage == Storage::Real48) {
        if (!doubleToReal48(number, at))
            refuse(field, table, value, floatProblem(field, value));
    } else if (field.storedLength == 4) {
        const auto single = static_cast<float>(number);
        if (!std::isfinite(single))
            refuse(field, table, value, floatProblem(field, value));
        store(at, std::bit_cast<quint32>(single));
    } else {
        if (!std::isfinite(number))
            refuse(field, table, value, floatProblem(field, value));
        store(at, std::bit_cast<quint64>(number));
    }
}

void writeText(const TFieldCacheItem& field, uchar* record, const QString& text,
               const QString& table) {
    QByteArray bytes;
    if (const QString why = encodeText(field, text, bytes); !why.isEmpty())
        refuse(field, table, text, why);
    clearField(field, record);
    uchar* at = record + field.offset;
    if (field.storage == Storage::LString)
        *at++ = static_cast<uchar>(bytes.size());
    qsizetype length = bytes.size();
    if (field.storage == Storage::String)
        length = paddedLength(reinterpret_cast<const uchar*>(bytes.constData()), length);
    std::memcpy(at, bytes.constData(), static_cast<size_t>(length));
}

void writeValue(const TFieldCacheItem& field, uchar* record, const Value& value,
                const QString& tableName) {
    const bool textField = field.kind() == Kind::String ||
                           (field.kind() == Kind::Memo && field.storage != Storage::Blob);
    if (!value.isValid()) {
        clearField(field, record);
        return;
    }
    if (textField) {
        writeText(field, record, asText(value), tableName);
        return;
    }
    if (isText(value)) {
        const QString text = value.toString();
        Value parsed;
        QString why;
        if (field.kind() == Kind::Date && text.size() == 8)
            parsed = parseDate(text, true);
        if (!parsed.toDate().isValid() && !textToValue(field, text, parsed, &why))
            refuse(field, tableName, value, why);
        writeValue(field, record, parsed, tableName);
        return;
    }
    switch (field.kind()) {
        case Kind::Date:
            if (value.typeId() != QMetaType::QDate && value.typeId() != QMetaType::QDateTime)
                refuse(field, tableName, value, QStringLiteral("not a date"));
            writeDate(field, record, value.toDate(), tableName);
            break;
        case Kind::Time:
            if (value.typeId() != QMetaType::QTime && value.typeId() != QMetaType::QDateTime)
                refuse(field, tableName, value, QStringLiteral("not a time"));
            writeTime(field, record, value.toTime());
            break;
        case Kind::Timestamp:
            if (value.typeId() != QMetaType::QDate && value.typeId() != QMetaType::QDateTime)
                refuse(field, tableName, value, QStringLiteral("not a timestamp"));
            writeTimestamp(field, record, value.toDateTime(), tableName);
            break;
        case Kind::RawBytes:
        case Kind::VarBinary:
        case Kind::Memo:
            if (value.typeId() != QMetaType::QByteArray)
                refuse(field, tableName, value, QStringLiteral("not bytes"));
            writeBytes(field, record, value.toByteArray(), tableName);
            break;
        default:
            writeNumber(field, record, value, tableName);
    }
}

// --- days

double dateToDays(QDate date) {
    return static_cast<double>(date.toJulianDay() - kDayZero);
}

QDate daysToDate(double days) {
    // Years 1..9999 in days; also rejects NaN.
    if (!(days > -693594 && days < 2958466))
        return QDate();
    const auto whole = static_cast<qint64>(days);
    return whole == 0 ? QDate() : QDate::fromJulianDay(whole + kDayZero);
}

}  // namespace data
