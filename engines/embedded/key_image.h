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

/// How a key segment is normalised. Every segment has a fixed length, so that images of whole keys
/// compare byte by byte in key order, and records with equal leading fields are adjacent:
///   integers, booleans  big-endian, sign bit inverted (booleans 1 byte, else the stored length)
///   floats              8 bytes, the double's bits transformed to ascend
///   texts               Windows-1252 bytes (or their case folding weights), padded with zeros
///   dates               4 bytes, day number + 1; 0 for no date
///   times               hours, minutes, seconds, hundredths; timestamps big-endian
///   raw bytes           unchanged
/// Descending segments are inverted.
enum class ImageForm { Integer, Unsigned, Boolean, Float, Text, FoldedText, Date, Time, Bytes };

struct SegmentImage {
    int fieldIndex = 0;
    ImageForm form = ImageForm::Bytes;
    bool descending = false;
    int offset = 0;  ///< within the image
    int length = 0;
};

/// The images that satisfy a comparison of one segment: low <= image < high. An empty bound is no
/// bound.
struct ImageRange {
    enum class Answer { Some, Nothing, Unknown };
    Answer answer = Answer::Unknown;  ///< Unknown: images do not follow SQL's order here
    QByteArray low;
    QByteArray high;
};

enum class Comparison { Equal, Less, LessOrEqual, Greater, GreaterOrEqual };

/// The smallest bytes greater than everything that begins with `prefix`; empty if there are none
/// (all bytes FF, or an empty prefix).
QByteArray successor(QByteArrayView prefix);

/// A date in key images: ascending, 0 for no date.
quint32 dateImage(const QDate& date);

/// Builds the normalised images of one key. Keeps a pointer to the layout, which must outlive it.
class KeyImage {
  public:
    KeyImage(const RecordLayout& layout, const KeyDef& key);

    int length() const { return m_length; }
    const std::vector<SegmentImage>& segments() const { return m_segments; }

    /// Writes the image of a record's key to `image` (resized to length()).
    void build(const uchar* record, QByteArray& image) const;
    QByteArray build(const QByteArray& record) const;

    /// Image of leading key fields with these values.
    /// @throws DataError(BadValue) if a value does not fit its field.
    QByteArray prefix(const std::vector<Value>& values) const;

    /// Whether the images of two records may differ; cheaper than building both.
    bool differs(const uchar* before, const uchar* after) const;

    /// The images of a segment's values for which SQL's comparison `op` with `value` holds.
    ImageRange range(int segment, Comparison op, sqlite3_value* value) const;

    /// Whether the field's bytes can be restored from the image.
    bool isReversible(int segment) const;
    /// Whether the image begins with a text, folded or not, that textOf() can return.
    bool beginsWithText() const;
    QByteArrayView textOf(QByteArrayView image) const;
    /// Restores the bytes of a reversible segment in a record.
    void restore(int segment, const uchar* image, uchar* record) const;

  private:
    void buildSegment(const SegmentImage& segment, const uchar* record, uchar* out) const;
    void putText(const SegmentImage& segment, QByteArrayView text, uchar* out) const;

    const RecordLayout* m_layout;
    std::vector<SegmentImage> m_segments;
    int m_length = 0;
};

}  // namespace engines::embedded
