#include "data/record/plain_text.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "data/record/field_text.h"

namespace data {

namespace {

constexpr int kLongestText = 255;  // of a length byte

bool isInteger(Kind kind) {
    return kind == Kind::SmallInt || kind == Kind::Integer || kind == Kind::Unsigned ||
           kind == Kind::LargeInt;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// A number without "+", blanks, "inf" and the like.
template <typename T>
bool plainNumber(QByteArrayView text, T& number) {
    const qsizetype first = text.startsWith('-') ? 1 : 0;
    if (first == text.size() || !isDigit(text[first]))
        return false;
    const auto result = std::from_chars(text.begin(), text.end(), number);
    return result.ec == std::errc{} && result.ptr == text.end();
}

// Of 1, 2 or 4 bytes, with or without a sign.
bool writeInteger(const TFieldCacheItem& field, uchar* at, QByteArrayView text) {
    qint64 number = 0;
    if (!plainNumber(text, number))
        return false;
    const auto [smallest, largest] = integerRange(field);
    if (number < smallest || number > largest)
        return false;
    const auto bits = static_cast<quint32>(number);
    for (int i = 0; i < field.storedLength; ++i)
        at[i] = static_cast<uchar>(bits >> 8 * i);
    return true;
}

bool writeDouble(uchar* at, QByteArrayView text) {
    double number = 0;
    if (!plainNumber(text, number) || !std::isfinite(number))
        return false;
    qToLittleEndian(number + 0.0, at);  // as writeFloat(): no negative zero
    return true;
}

// The number in `count` digits; -1 if a character is not a digit.
int digits(QByteArrayView text, qsizetype from, int count) {
    int number = 0;
    for (qsizetype i = from; i < from + count; ++i) {
        if (!isDigit(text[i]))
            return -1;
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

bool writeDate(uchar* at, QByteArrayView text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-')
        return false;
    const int year = digits(text, 0, 4);
    const QDate date(year, digits(text, 5, 2), digits(text, 8, 2));
    if (year < 1 || !date.isValid())
        return false;
    const double days = dateToDays(date);
    if (days == 0)
        return false;
    qToLittleEndian(days, at);
    return true;
}

// Length byte and characters. UTF-8 of U+0020..U+007E and U+00A0..U+00FF, which Windows-1252 has in
// the same places.
bool writeLatin(const TFieldCacheItem& field, uchar* at, QByteArrayView text) {
    const auto room = std::min<qsizetype>(field.storedLength - 1, kLongestText);
    std::array<uchar, kLongestText> latin;
    qsizetype length = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        auto c = static_cast<uchar>(text[i]);
        if (c == 0xC2 || c == 0xC3) {
            if (++i == text.size())
                return false;
            const auto next = static_cast<uchar>(text[i]);
            if (next < (c == 0xC2 ? 0xA0 : 0x80) || next > 0xBF)
                return false;
            c = static_cast<uchar>(c == 0xC2 ? next : next + 0x40);
        } else if (c < 0x20 || c > 0x7E) {
            return false;
        }
        if (length == room)
            return false;
        latin[static_cast<size_t>(length++)] = c;
    }
    std::memset(at, 0, field.storedLength);
    *at = static_cast<uchar>(length);
    std::memcpy(at + 1, latin.data(), static_cast<size_t>(length));
    return true;
}

bool writeBoolean(const TFieldCacheItem& field, uchar* at, QByteArrayView text) {
    if (text.size() != 1 || (text[0] != '0' && text[0] != '1'))
        return false;
    const bool value = text[0] == '1';
    if (field.storage == Storage::Bit) {
        *at = static_cast<uchar>(value ? *at | field.mask : *at & ~field.mask);
        return true;
    }
    std::memset(at, 0, field.storedLength);
    *at = value ? 1 : 0;
    return true;
}

}  // namespace

bool writePlainText(const TFieldCacheItem& field, uchar* record, QByteArrayView text) {
    if (text.isEmpty())
        return false;
    uchar* at = record + field.offset;
    const int length = field.storedLength;
    switch (field.storage) {
        case Storage::LString:
            return field.kind() == Kind::String && writeLatin(field, at, text);
        case Storage::Integer:
        case Storage::UnsignedBinary:
            return isInteger(field.kind()) && length <= 4 && writeInteger(field, at, text);
        case Storage::Float:
            return field.kind() == Kind::Float && length == 8 && writeDouble(at, text);
        case Storage::Logical:
        case Storage::Bit:
            return field.kind() == Kind::Boolean && writeBoolean(field, at, text);
        case Storage::DateDouble:
            return field.kind() == Kind::Date && writeDate(at, text);
        default:
            return false;
    }
}

}  // namespace data
