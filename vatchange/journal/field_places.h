#pragma once

#include <vector>

#include "data/record/record_layout.h"

namespace vatchange {

/// A part of a record that is judged and restored as a whole: a field, or fields that share bytes;
/// bit fields of a byte each on its own; bytes of no field.
struct FieldPlace {
    int offset = 0;
    int length = 0;
    uchar mask = 0xFF;        ///< of each byte
    std::vector<int> fields;  ///< indexes in the layout

    bool equal(const QByteArray& record, const QByteArray& other) const;
    void copy(const QByteArray& from, QByteArray& to) const;
};

/// The places of a record, by offset.
std::vector<FieldPlace> fieldPlaces(const data::RecordLayout& layout);

/// A field's value as in an export.
QString fieldText(const data::RecordLayout& layout, int field, const QByteArray& record);

/// Whether the place's bytes are equal, or mean the same values.
bool sameValue(const data::RecordLayout& layout, const FieldPlace& place, const QByteArray& record,
               const QByteArray& other);

}  // namespace vatchange
