#include <cmath>
#include <iterator>

#include "data/error.h"
#include "fuzz/fuzz.h"
#include "tests/data/record_fields.h"

// One field over any bytes, and any text as its value. Input: field number, record bytes, text as
// UTF-8. A value read can be written back and reads the same; an accepted text is stored, and its
// printed form is accepted and stores the same bytes.

namespace {

using data::Kind;
using data::Storage;

struct Shape {
    Kind kind;
    Storage storage;
    quint16 length;
    quint16 mask = 0;
};

constexpr Shape kShapes[] = {
    {Kind::String, Storage::LString, 19},
    {Kind::String, Storage::LString, 1},
    {Kind::String, Storage::ZString, 13},
    {Kind::String, Storage::String, 10},
    {Kind::Memo, Storage::Note, 40},
    {Kind::Memo, Storage::Blob, 8},
    {Kind::Date, Storage::Date, 4},
    {Kind::Date, Storage::DateDouble, 8},
    {Kind::Time, Storage::Time, 4},
    {Kind::Timestamp, Storage::Timestamp, 8},
    {Kind::Boolean, Storage::Logical, 1},
    {Kind::Boolean, Storage::Bit, 1, 64},
    {Kind::SmallInt, Storage::Integer, 1},
    {Kind::SmallInt, Storage::Integer, 2},
    {Kind::Integer, Storage::Integer, 4},
    {Kind::LargeInt, Storage::Integer, 8},
    {Kind::Integer, Storage::AutoIncrement, 4},
    {Kind::Unsigned, Storage::UnsignedBinary, 1},
    {Kind::Unsigned, Storage::UnsignedBinary, 2},
    {Kind::Float, Storage::Float, 4},
    {Kind::Float, Storage::Float, 8},
    {Kind::Float, Storage::Real48, 6},
    {Kind::VarBinary, Storage::LVar, 12},
    {Kind::RawBytes, Storage::Guid, 16},
};

uchar* at(QByteArray& record) {
    return reinterpret_cast<uchar*>(record.data());
}

bool sameValue(const data::Value& a, const data::Value& b) {
    return a == b || (!a.toDateTime().isValid() && !b.toDateTime().isValid() &&
                      a.typeId() == QMetaType::QDateTime);
}

void rewrite(const data::TFieldCacheItem& field, QByteArray record) {
    const data::Value value = data::readValue(field, at(record));
    if (field.kind() == Kind::Float && !std::isfinite(value.toDouble()))
        return;  // not a number; writing it is refused
    if (field.kind() == Kind::Time && !value.toTime().isValid())
        return;  // not a time; stored as the empty one, which reads as midnight
    data::writeValue(field, at(record), value, QString());
    require(sameValue(data::readValue(field, at(record)), value));
}

void storeText(const data::TFieldCacheItem& field, const QString& text) {
    data::Value value;
    QString why;
    if (!data::textToValue(field, text, value, &why)) {
        require(!why.isEmpty());
        return;
    }
    QByteArray first(field.storedLength, '\0');
    try {
        data::writeValue(field, at(first), value, QString());
    } catch (const data::DataError&) {
        // Only a time zone can move an accepted timestamp out of the storable years.
        require(field.kind() == Kind::Timestamp);
        return;
    }
    const QString printed = data::valueToText(field, data::readValue(field, at(first)));
    require(data::textToValue(field, printed, value, nullptr));
    QByteArray second(field.storedLength, '\0');
    data::writeValue(field, at(second), value, QString());
    require(first == second);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const Shape& shape = kShapes[data[0] % std::size(kShapes)];
    const auto field = test::field(shape.kind, shape.storage, shape.length, shape.mask);

    const QByteArray input = inputBytes(data + 1, size - 1);
    if (input.size() >= shape.length)
        rewrite(field, input.left(shape.length));
    storeText(field, QString::fromUtf8(input.mid(shape.length)));
    storeText(field, QString::fromUtf8(input));
    return 0;
}
