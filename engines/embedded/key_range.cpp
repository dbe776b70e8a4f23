#include <sqlite3.h>

#include <QString>
#include <algorithm>
#include <bit>
#include <cmath>

#include "data/record/field_text.h"
#include "data/record/record_codec.h"
#include "data/windows1252.h"
#include "engines/embedded/key_image.h"

// Position of a compared SQL value among a field's images. The field need not be able to store the
// value: 3.5 lies between two integers, a text that is too long just above its beginning.

namespace engines::embedded {

namespace {

struct Place {
    enum class Relation {
        At,       // the value's own image
        Above,    // just above everything that begins with the image
        Below,    // below all values of the field
        AboveAll  // above all of them
    };
    Relation relation = Relation::At;
    QByteArray image;
};

QByteArray bigEndian(quint64 value, int length) {
    QByteArray bytes(length, '\0');
    for (int i = length - 1; i >= 0; --i) {
        bytes[i] = static_cast<char>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}

QByteArray integerImage(qint64 value, const SegmentImage& segment) {
    quint64 bits = static_cast<quint64>(value);
    if (segment.form == ImageForm::Integer)
        bits ^= quint64{1} << (8 * segment.length - 1);
    return bigEndian(bits, segment.length);
}

Place placeOfWhole(qint64 value, const SegmentImage& segment,
                   const std::pair<qint64, qint64>& limits) {
    if (value < limits.first)
        return {Place::Relation::Below, {}};
    if (value > limits.second)
        return {Place::Relation::AboveAll, {}};
    return {Place::Relation::At, integerImage(value, segment)};
}

// @return false if the position is unknown.
bool placeNumber(const TFieldCacheItem& field, const SegmentImage& segment, sqlite3_value* value,
                 Place& place) {
    const int type = sqlite3_value_numeric_type(value);
    if (type == SQLITE_TEXT || type == SQLITE_BLOB) {  // SQL sorts all numbers before these
        place.relation = Place::Relation::AboveAll;
        return true;
    }
    if (segment.form == ImageForm::Float) {
        const double number = sqlite3_value_double(value);
        constexpr qint64 kLargestExact = qint64{1} << 53;
        if (type == SQLITE_INTEGER && (sqlite3_value_int64(value) > kLargestExact ||
                                       sqlite3_value_int64(value) < -kLargestExact))
            return false;  // compared exactly, which a double cannot do
        const auto bits = std::bit_cast<quint64>(number + 0.0);
        const quint64 top = quint64{1} << 63;
        place = {Place::Relation::At, bigEndian((bits & top) != 0 ? ~bits : bits | top, 8)};
        return true;
    }
    const std::pair<qint64, qint64> limits =
        segment.form == ImageForm::Boolean ? std::pair<qint64, qint64>{0, 1} : integerRange(field);
    if (type == SQLITE_INTEGER) {
        place = placeOfWhole(sqlite3_value_int64(value), segment, limits);
        return true;
    }
    const double number = sqlite3_value_double(value);
    const double below = std::floor(number);
    if (below < -9.2e18 || below > 9.2e18) {
        place.relation = below < 0 ? Place::Relation::Below : Place::Relation::AboveAll;
        return segment.length < 8;
    }
    place = placeOfWhole(static_cast<qint64>(below), segment, limits);
    if (place.relation == Place::Relation::At && below != number)
        place.relation = Place::Relation::Above;
    return true;
}

bool placeText(const SegmentImage& segment, sqlite3_value* value, Place& place) {
    const int type = sqlite3_value_type(value);
    if (type == SQLITE_BLOB) {
        place.relation = Place::Relation::AboveAll;
        return true;
    }
    if (type != SQLITE_TEXT)  // SQL compares as text or number depending on the value's origin
        return false;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                                           sqlite3_value_bytes(value));
    if (text.contains(QChar(0)))
        return false;
    QByteArray bytes;
    qsizetype bad = -1;
    const bool encodable = toWindows1252(text, bytes, &bad);
    if (!encodable)
        toWindows1252(text.left(bad), bytes);
    if (segment.form == ImageForm::FoldedText)
        std::transform(bytes.begin(), bytes.end(), bytes.begin(), [](char byte) {
            return static_cast<char>(kCaseFoldWeight[static_cast<uchar>(byte)]);
        });
    place.relation =
        encodable && bytes.size() <= segment.length ? Place::Relation::At : Place::Relation::Above;
    if (bytes.size() > segment.length)
        bytes.truncate(segment.length);
    else if (place.relation == Place::Relation::At)
        bytes.append(QByteArray(segment.length - bytes.size(), '\0'));
    place.image = bytes;
    if (place.relation == Place::Relation::Above && place.image.isEmpty())
        place.relation = Place::Relation::AboveAll;
    return true;
}

bool placeDate(sqlite3_value* value, Place& place) {
    if (sqlite3_value_type(value) != SQLITE_TEXT)
        return false;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                                           sqlite3_value_bytes(value));
    const QDate date = parseDate(text, true);
    if (!date.isValid() && !text.isEmpty())
        return false;
    place = {Place::Relation::At, bigEndian(dateImage(date), 4)};
    return true;
}

// Images that satisfy a comparison, for an ascending segment.
ImageRange rangeOf(Comparison op, const Place& place) {
    using Answer = ImageRange::Answer;
    const bool wantsBelow = op == Comparison::Less || op == Comparison::LessOrEqual;
    if (place.relation == Place::Relation::Below || place.relation == Place::Relation::AboveAll) {
        const bool all =
            op != Comparison::Equal && wantsBelow == (place.relation == Place::Relation::AboveAll);
        return {all ? Answer::Some : Answer::Nothing, {}, {}};
    }
    const bool at = place.relation == Place::Relation::At;
    const QByteArray above = successor(place.image);
    switch (op) {
        case Comparison::Equal:
            return at ? ImageRange{Answer::Some, place.image, above}
                      : ImageRange{Answer::Nothing, {}, {}};
        case Comparison::Less:
            return {Answer::Some, {}, at ? place.image : above};
        case Comparison::LessOrEqual:
            return {Answer::Some, {}, above};
        case Comparison::GreaterOrEqual:
            if (at)
                return {Answer::Some, place.image, {}};
            [[fallthrough]];
        case Comparison::Greater:
            break;
    }
    return {above.isEmpty() ? Answer::Nothing : Answer::Some, above, {}};
}

QByteArray inverted(QByteArray bytes) {
    std::transform(bytes.begin(), bytes.end(), bytes.begin(),
                   [](char byte) { return static_cast<char>(~byte); });
    return bytes;
}

// The same values as inverted images. A bound of an ascending range is a prefix p in "image >= p"
// or "image < p"; padded to full length, the inverted images satisfy "image <= ~p" or "image > ~p".
ImageRange mirrored(const ImageRange& range, int length) {
    const auto padded = [length](QByteArray bytes) {
        return inverted(bytes.append(QByteArray(length - bytes.size(), '\0')));
    };
    ImageRange turned{range.answer, {}, {}};
    if (!range.low.isEmpty())
        turned.high = successor(padded(range.low));
    if (!range.high.isEmpty()) {
        turned.low = successor(padded(range.high));
        if (turned.low.isEmpty())
            turned.answer = ImageRange::Answer::Nothing;
    }
    return turned;
}

}  // namespace

ImageRange KeyImage::range(int segment, Comparison op, sqlite3_value* value) const {
    const SegmentImage& image = m_segments[static_cast<size_t>(segment)];
    const TFieldCacheItem& field = m_layout->field(image.fieldIndex);
    if (sqlite3_value_type(value) == SQLITE_NULL)
        return {ImageRange::Answer::Nothing, {}, {}};
    Place place;
    bool known = false;
    switch (image.form) {
        case ImageForm::Integer:
        case ImageForm::Unsigned:
        case ImageForm::Boolean:
        case ImageForm::Float:
            known = placeNumber(field, image, value, place);
            break;
        case ImageForm::Text:
            known = placeText(image, value, place);
            break;
        case ImageForm::FoldedText:  // equal texts have equal weights, but their order differs
            known = op == Comparison::Equal && placeText(image, value, place);
            break;
        case ImageForm::Date:
            known = placeDate(value, place);
            break;
        case ImageForm::Time:
        case ImageForm::Bytes:
            break;
    }
    if (!known)
        return {};
    const ImageRange range = rangeOf(op, place);
    return image.descending ? mirrored(range, image.length) : range;
}

}  // namespace engines::embedded
