#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <vector>

#include "data/record/record_layout.h"
#include "data/value.h"
#include "engines/data_names.h"

struct sqlite3_value;

namespace engines::embedded {

/// How one key segment is normalised. Every segment has a fixed length, so that the images of whole
/// keys compare byte by byte in key order and the records with the same leading fields lie
/// together:
///   integers, booleans  big-endian, sign bit turned (1 byte for booleans, else the stored length)
///   floats              8 bytes, the double's bits turned so that they ascend
///   texts               the Windows-1252 bytes (or their case folding weights), padded with zeros
///   dates               4 bytes, day number + 1; 0 for no date
///   times               hours, minutes, seconds, hundredths; timestamps big-endian
///   raw bytes           as they are
/// A descending segment is inverted.
enum class ImageForm { Integer, Unsigned, Boolean, Float, Text, FoldedText, Date, Time, Bytes };

struct SegmentImage {
    int fieldIndex = 0;
    ImageForm form = ImageForm::Bytes;
    bool descending = false;
    int offset = 0;  ///< within the image
    int length = 0;
};

/// The images that satisfy a comparison of one segment: low <= image < high. An empty bound is
/// none.
struct ImageRange {
    enum class Answer { Some, Nothing, Unknown };
    Answer answer = Answer::Unknown;  ///< Unknown: the comparison does not follow the image order
    QByteArray low;
    QByteArray high;
};

enum class Comparison { Equal, Less, LessOrEqual, Greater, GreaterOrEqual };

/// The smallest bytes that are above everything that begins with `prefix`; empty when there is
/// nothing above (all bytes FF, or an empty prefix).
QByteArray successor(QByteArrayView prefix);

/// The number of a date in key images: ascending, 0 for no date.
quint32 dateImage(const QDate& date);

/// Builds the normalised image of one key. Holds a pointer to the layout, which must outlive it.
class KeyImage {
  public:
    KeyImage(const RecordLayout& layout, const KeyDef& key);

    int length() const { return m_length; }
    const std::vector<SegmentImage>& segments() const { return m_segments; }

    /// The image of a record's key: length() bytes into `image` (resized).
    void build(const uchar* record, QByteArray& image) const;
    QByteArray build(const QByteArray& record) const;

    /// The image of the leading key fields with these values.
    /// @throws DataError(BadValue) when a value is none of its field's.
    QByteArray prefix(const std::vector<Value>& values) const;

    /// True when records with these bytes have different images; cheaper than building both.
    bool differs(const uchar* before, const uchar* after) const;

    /// Where the values of a segment stand that compare in SQL as `op` says with `value`.
    ImageRange range(int segment, Comparison op, sqlite3_value* value) const;

    /// True when the field's bytes can be told from the image.
    bool isReversible(int segment) const;
    /// Writes the field's bytes of a reversible segment into a record.
    void restore(int segment, const uchar* image, uchar* record) const;

  private:
    void buildSegment(const SegmentImage& segment, const uchar* record, uchar* out) const;
    void putText(const SegmentImage& segment, QByteArrayView text, uchar* out) const;

    const RecordLayout* m_layout;
    std::vector<SegmentImage> m_segments;
    int m_length = 0;
};

}  // namespace engines::embedded
