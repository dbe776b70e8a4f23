#include "engines/shops/key_order.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "data/dictionary/field_cache_item.h"

namespace engines::shops {

namespace {

constexpr int kTypeCurrency = 19;  // a signed integer

template <typename T>
int order(const T& left, const T& right) {
    return left < right ? -1 : (right < left ? 1 : 0);
}

Storage typeOf(const SegmentStat& segment) {
    return static_cast<Storage>(segment.type);
}

bool isSigned(const SegmentStat& segment) {
    return typeOf(segment) == Storage::Integer || typeOf(segment) == Storage::AutoIncrement ||
           segment.type == kTypeCurrency;
}

// Little-endian numbers of any length: from the highest byte down, the sign first.
int compareNumbers(const uchar* left, const uchar* right, int length, bool hasSign) {
    for (int i = length - 1; i >= 0; --i) {
        const uchar turn = hasSign && i == length - 1 ? 0x80 : 0;
        if (const int c = order<uchar>(left[i] ^ turn, right[i] ^ turn))
            return c;
    }
    return 0;
}

double floatAt(const uchar* bytes, int length) {
    if (length == 4)
        return static_cast<double>(qFromLittleEndian<float>(bytes));
    return qFromLittleEndian<double>(bytes);
}

int compareText(const SegmentStat& segment, const uchar* left, int leftLength, const uchar* right,
                int rightLength) {
    const auto* weights = segment.weights.isEmpty()
                              ? nullptr
                              : reinterpret_cast<const uchar*>(segment.weights.constData());
    for (int i = 0; i < std::min(leftLength, rightLength); ++i) {
        const uchar a = weights != nullptr ? weights[left[i]] : left[i];
        const uchar b = weights != nullptr ? weights[right[i]] : right[i];
        if (a != b)
            return a < b ? -1 : 1;
    }
    return order(leftLength, rightLength);
}

int lengthOfZString(const uchar* bytes, int capacity) {
    const void* end = std::memchr(bytes, 0, static_cast<size_t>(capacity));
    return end == nullptr ? capacity : static_cast<int>(static_cast<const uchar*>(end) - bytes);
}

int compareSegment(const SegmentStat& segment, const uchar* left, const uchar* right) {
    const int length = segment.length;
    switch (typeOf(segment)) {
        case Storage::LString:
            return compareText(segment, left + 1, std::min<int>(*left, length - 1), right + 1,
                               std::min<int>(*right, length - 1));
        case Storage::ZString:
            return compareText(segment, left, lengthOfZString(left, length), right,
                               lengthOfZString(right, length));
        case Storage::Float:
            if (length == 4 || length == 8)
                return order(floatAt(left, length), floatAt(right, length));
            break;
        case Storage::Date:  // day, month, year
            if (length == 4) {
                if (const int c = compareNumbers(left + 2, right + 2, 2, false))
                    return c;
                return compareNumbers(left, right, 2, false);
            }
            break;
        case Storage::UnsignedBinary:
        case Storage::Time:
        case Storage::Timestamp:
            return compareNumbers(left, right, length, false);
        default:
            if (isSigned(segment))
                return compareNumbers(left, right, length, true);
            break;
    }
    return compareText(segment, left, length, right, length);
}

uchar endCharacter(const SegmentStat& segment, bool high) {
    if (segment.weights.isEmpty())
        return high ? 0xFF : 0;
    const auto* weights = reinterpret_cast<const uchar*>(segment.weights.constData());
    const auto* found =
        high ? std::max_element(weights, weights + 256) : std::min_element(weights, weights + 256);
    return static_cast<uchar>(found - weights);
}

void fillFloat(uchar* out, int length, bool high) {
    const double end =
        high ? std::numeric_limits<double>::infinity() : -std::numeric_limits<double>::infinity();
    if (length == 4)
        qToLittleEndian(static_cast<float>(end), out);
    else
        qToLittleEndian(end, out);
}

void fillSegment(const SegmentStat& segment, bool high, uchar* out) {
    const int length = segment.length;
    const auto size = static_cast<size_t>(length);
    switch (typeOf(segment)) {
        case Storage::LString:
            std::memset(out, high ? endCharacter(segment, true) : 0, size);
            *out = high ? static_cast<uchar>(length - 1) : 0;
            return;
        case Storage::ZString:
            std::memset(out, high ? endCharacter(segment, true) : 0, size);
            out[length - 1] = 0;
            return;
        case Storage::Float:
            if (length == 4 || length == 8) {
                fillFloat(out, length, high);
                return;
            }
            break;
        case Storage::Date:
            std::memset(out, 0, size);
            if (high && length == 4) {  // a valid date, in case the engine checks
                out[0] = 31;
                out[1] = 12;
                qToLittleEndian<quint16>(9999, out + 2);
            }
            return;
        case Storage::UnsignedBinary:
        case Storage::Time:
        case Storage::Timestamp:
            std::memset(out, high ? 0xFF : 0, size);
            return;
        default:
            if (isSigned(segment)) {
                std::memset(out, high ? 0xFF : 0, size);
                out[length - 1] = high ? 0x7F : 0x80;
                return;
            }
            break;
    }
    std::memset(out, endCharacter(segment, high), size);
}

}  // namespace

QByteArray KeyOrder::keyOf(const QByteArray& record) const {
    return filled(record, segmentCount(), false);
}

QByteArray KeyOrder::filled(const QByteArray& record, int first, bool high) const {
    QByteArray key(m_key.length, '\0');
    char* out = key.data();
    for (int i = 0; i < segmentCount(); ++i) {
        const SegmentStat& segment = m_key.segments[static_cast<size_t>(i)];
        if (i >= first)
            fillSegment(segment, high != segment.descending, reinterpret_cast<uchar*>(out));
        else
            std::memcpy(out, record.constData() + segment.offset,
                        static_cast<size_t>(segment.length));
        out += segment.length;
    }
    return key;
}

int KeyOrder::compare(const QByteArray& left, const QByteArray& right, int segments) const {
    for (int i = 0; i < std::min(segments, segmentCount()); ++i) {
        const SegmentStat& segment = m_key.segments[static_cast<size_t>(i)];
        const int c = compareSegment(
            segment, reinterpret_cast<const uchar*>(left.constData()) + segment.offset,
            reinterpret_cast<const uchar*>(right.constData()) + segment.offset);
        if (c != 0)
            return segment.descending ? -c : c;
    }
    return 0;
}

}  // namespace engines::shops
