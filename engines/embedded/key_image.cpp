#include "engines/embedded/key_image.h"

#include <QtEndian>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "data/record/field_text.h"
#include "data/record/record_codec.h"
#include "data/windows1252.h"

namespace engines::embedded {

namespace {

constexpr quint64 kTopBit = quint64{1} << 63;

// Julian day of date image 0: before 0001-01-01, so that every date sorts above "no date".
constexpr qint64 kImageDayZero = 1721424;

constexpr int kMaxRestoredLength = 255;

void putBigEndian(quint64 value, int length, uchar* out) {
    for (int i = length - 1; i >= 0; --i) {
        out[i] = static_cast<uchar>(value & 0xFF);
        value >>= 8;
    }
}

quint64 getBigEndian(const uchar* bytes, int length) {
    quint64 value = 0;
    for (int i = 0; i < length; ++i)
        value = value << 8 | bytes[i];
    return value;
}

quint64 ascendingBits(double value) {
    const auto bits = std::bit_cast<quint64>(value + 0.0);  // -0.0 becomes 0.0
    return (bits & kTopBit) != 0 ? ~bits : bits | kTopBit;
}

double fromAscendingBits(quint64 bits) {
    return std::bit_cast<double>((bits & kTopBit) != 0 ? bits & ~kTopBit : ~bits);
}

}  // namespace

quint32 dateImage(const QDate& date) {
    return date.isValid() ? static_cast<quint32>(date.toJulianDay() - kImageDayZero) : 0;
}

namespace {

ImageForm formOf(const TFieldCacheItem& field, bool ignoreCase) {
    switch (field.kind()) {
        case Kind::String:
        case Kind::Memo:
            if (field.storage == Storage::Blob)
                return ImageForm::Bytes;
            return ignoreCase ? ImageForm::FoldedText : ImageForm::Text;
        case Kind::Date:
            return ImageForm::Date;
        case Kind::Boolean:
            return ImageForm::Boolean;
        case Kind::Float:
            return ImageForm::Float;
        case Kind::Time:
            return ImageForm::Time;
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::LargeInt:
        case Kind::Unsigned:
            return field.storage == Storage::UnsignedBinary ? ImageForm::Unsigned
                                                            : ImageForm::Integer;
        case Kind::Timestamp:
        case Kind::RawBytes:
        case Kind::VarBinary:
            break;
    }
    return ImageForm::Bytes;
}

int imageLength(const TFieldCacheItem& field, ImageForm form) {
    switch (form) {
        case ImageForm::Boolean:
            return 1;
        case ImageForm::Float:
            return 8;
        case ImageForm::Date:
            return 4;
        case ImageForm::Text:
        case ImageForm::FoldedText:
            return textCapacity(field);
        default:
            return field.storedLength;
    }
}

}  // namespace

QByteArray successor(QByteArrayView prefix) {
    QByteArray next = prefix.toByteArray();
    while (!next.isEmpty() && static_cast<uchar>(next.back()) == 0xFF)
        next.chop(1);
    if (!next.isEmpty())
        next.back() = static_cast<char>(static_cast<uchar>(next.back()) + 1);
    return next;
}

KeyImage::KeyImage(const RecordLayout& layout, const KeyDef& key) : m_layout(&layout) {
    for (const KeySegment& segment : key.segments) {
        const TFieldCacheItem& field = layout.field(segment.fieldIndex);
        const ImageForm form = formOf(field, segment.ignoreCase);
        m_segments.push_back(
            {segment.fieldIndex, form, segment.descending, m_length, imageLength(field, form)});
        m_length += m_segments.back().length;
    }
}

void KeyImage::putText(const SegmentImage& segment, QByteArrayView text, uchar* out) const {
    const qsizetype used = std::min<qsizetype>(text.size(), segment.length);
    if (segment.form == ImageForm::FoldedText) {
        for (qsizetype i = 0; i < used; ++i)
            out[i] = kCaseFoldWeight[static_cast<uchar>(text[i])];
    } else {
        std::memcpy(out, text.data(), static_cast<size_t>(used));
    }
    std::memset(out + used, 0, static_cast<size_t>(segment.length - used));
}

void KeyImage::buildSegment(const SegmentImage& segment, const uchar* record, uchar* out) const {
    const TFieldCacheItem& field = m_layout->field(segment.fieldIndex);
    switch (segment.form) {
        case ImageForm::Integer: {
            const auto value = static_cast<quint64>(readInteger(field, record));
            putBigEndian(value ^ (kTopBit >> (64 - 8 * segment.length)), segment.length, out);
            break;
        }
        case ImageForm::Unsigned:
        case ImageForm::Boolean:
            putBigEndian(static_cast<quint64>(readInteger(field, record)), segment.length, out);
            break;
        case ImageForm::Float:
            putBigEndian(ascendingBits(readFloat(field, record)), 8, out);
            break;
        case ImageForm::Text:
        case ImageForm::FoldedText:
            putText(segment, readTextBytes(field, record), out);
            break;
        case ImageForm::Date:
            putBigEndian(dateImage(readDate(field, record)), 4, out);
            break;
        case ImageForm::Time:
            for (int i = 0; i < 4; ++i)
                out[i] = record[field.offset + 3 - i];
            break;
        case ImageForm::Bytes:
            std::memcpy(out, record + field.offset, static_cast<size_t>(segment.length));
            if (field.kind() == Kind::Timestamp)
                std::reverse(out, out + segment.length);
            break;
    }
    if (segment.descending)
        std::transform(out, out + segment.length, out,
                       [](uchar byte) { return static_cast<uchar>(~byte); });
}

void KeyImage::build(const uchar* record, QByteArray& image) const {
    image.resize(m_length);
    auto* out = reinterpret_cast<uchar*>(image.data());
    for (const SegmentImage& segment : m_segments)
        buildSegment(segment, record, out + segment.offset);
}

QByteArray KeyImage::build(const QByteArray& record) const {
    QByteArray image;
    build(reinterpret_cast<const uchar*>(record.constData()), image);
    return image;
}

QByteArray KeyImage::prefix(const std::vector<Value>& values) const {
    // Fields may share bytes, so only one at a time is set in the record.
    QByteArray record(m_layout->recordLength(), '\0');
    auto* bytes = reinterpret_cast<uchar*>(record.data());
    QByteArray image;
    for (size_t i = 0; i < std::min(values.size(), m_segments.size()); ++i) {
        const SegmentImage& segment = m_segments[i];
        writeValue(m_layout->field(segment.fieldIndex), bytes, values[i], m_layout->tableName());
        image.resize(segment.offset + segment.length);
        buildSegment(segment, bytes, reinterpret_cast<uchar*>(image.data()) + segment.offset);
    }
    return image;
}

bool KeyImage::differs(const uchar* before, const uchar* after) const {
    return std::any_of(m_segments.begin(), m_segments.end(), [&](const SegmentImage& segment) {
        const TFieldCacheItem& field = m_layout->field(segment.fieldIndex);
        return std::memcmp(before + field.offset, after + field.offset, field.storedLength) != 0;
    });
}

bool KeyImage::isReversible(int segment) const {
    const SegmentImage& image = m_segments[static_cast<size_t>(segment)];
    const TFieldCacheItem& field = m_layout->field(image.fieldIndex);
    switch (image.form) {
        case ImageForm::Integer:
        case ImageForm::Unsigned:
        case ImageForm::Float:
        case ImageForm::Date:
            return true;
        case ImageForm::Text:
            return field.kind() == Kind::String && image.length <= kMaxRestoredLength;
        default:
            return false;
    }
}

bool KeyImage::beginsWithText() const {
    const SegmentImage& first = m_segments.front();
    return !first.descending &&
           (first.form == ImageForm::Text || first.form == ImageForm::FoldedText);
}

QByteArrayView KeyImage::textOf(QByteArrayView image) const {
    QByteArrayView text = image.first(m_segments.front().length);
    while (text.endsWith('\0'))
        text.chop(1);
    return text;
}

void KeyImage::restore(int segment, const uchar* image, uchar* record) const {
    const SegmentImage& place = m_segments[static_cast<size_t>(segment)];
    const TFieldCacheItem& field = m_layout->field(place.fieldIndex);
    uchar turned[kMaxRestoredLength];
    const uchar* from = image + place.offset;
    if (place.descending) {
        std::transform(from, from + place.length, turned,
                       [](uchar byte) { return static_cast<uchar>(~byte); });
        from = turned;
    }
    uchar* to = record + field.offset;
    switch (place.form) {
        case ImageForm::Integer: {
            quint64 value = getBigEndian(from, place.length);
            value ^= kTopBit >> (64 - 8 * place.length);
            const quint64 little = qToLittleEndian(value);
            std::memcpy(to, &little, static_cast<size_t>(place.length));
            break;
        }
        case ImageForm::Unsigned: {
            const quint64 little = qToLittleEndian(getBigEndian(from, place.length));
            std::memcpy(to, &little, static_cast<size_t>(place.length));
            break;
        }
        case ImageForm::Float:
            writeFloat(field, record, fromAscendingBits(getBigEndian(from, 8)), QString());
            break;
        case ImageForm::Date: {
            const auto day = static_cast<qint64>(getBigEndian(from, 4));
            writeValue(field, record,
                       day == 0 ? QDate() : QDate::fromJulianDay(day + kImageDayZero), QString());
            break;
        }
        default: {  // a string
            int length = place.length;
            while (length > 0 && from[length - 1] == 0)
                --length;
            clearField(field, record);
            if (field.storage == Storage::LString)
                *to++ = static_cast<uchar>(length);
            std::memcpy(to, from, static_cast<size_t>(length));
            break;
        }
    }
}

}  // namespace engines::embedded
