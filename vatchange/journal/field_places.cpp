#include "vatchange/journal/field_places.h"

#include <algorithm>

#include "data/record/record_codec.h"

namespace vatchange {

namespace {

bool isBit(const data::RecordLayout& layout, int field) {
    return layout.field(field).storage == data::Storage::Bit;
}

/// Splits a place of bit fields alone into one for each bit mask.
void addPlace(const data::RecordLayout& layout, FieldPlace place, std::vector<FieldPlace>& places) {
    const bool bits = place.length == 1 && !place.fields.empty() &&
                      std::all_of(place.fields.begin(), place.fields.end(),
                                  [&](int field) { return isBit(layout, field); });
    if (!bits) {
        places.push_back(std::move(place));
        return;
    }
    uchar rest = 0xFF;
    for (const int field : place.fields) {
        const auto mask = static_cast<uchar>(layout.field(field).mask);
        places.push_back({place.offset, 1, mask, {field}});
        rest &= static_cast<uchar>(~mask);
    }
    if (rest != 0)
        places.push_back({place.offset, 1, rest, {}});
}

}  // namespace

bool FieldPlace::equal(const QByteArray& record, const QByteArray& other) const {
    for (int i = offset; i < offset + length; ++i) {
        if (((record[i] ^ other[i]) & mask) != 0)
            return false;
    }
    return true;
}

void FieldPlace::copy(const QByteArray& from, QByteArray& to) const {
    for (int i = offset; i < offset + length; ++i)
        to[i] = static_cast<char>((to[i] & ~mask) | (from[i] & mask));
}

std::vector<FieldPlace> fieldPlaces(const data::RecordLayout& layout) {
    std::vector<int> order(static_cast<size_t>(layout.fieldCount()));
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<int>(i);
    std::stable_sort(order.begin(), order.end(), [&layout](int a, int b) {
        return layout.field(a).offset < layout.field(b).offset;
    });
    std::vector<FieldPlace> places;
    int end = 0;
    FieldPlace place;
    const auto close = [&] {
        if (place.length > 0)
            addPlace(layout, std::move(place), places);
        place = {};
    };
    for (const int index : order) {
        const data::TFieldCacheItem& field = layout.field(index);
        if (field.storedLength == 0)
            continue;
        if (field.offset >= end) {
            close();
            if (field.offset > end)
                places.push_back({end, field.offset - end, 0xFF, {}});
            place.offset = field.offset;
        }
        end = std::max(end, field.offset + field.storedLength);
        place.length = end - place.offset;
        place.fields.push_back(index);
    }
    close();
    if (end < layout.recordLength())
        places.push_back({end, layout.recordLength() - end, 0xFF, {}});
    return places;
}

QString fieldText(const data::RecordLayout& layout, int field, const QByteArray& record) {
    const data::TFieldCacheItem& item = layout.field(field);
    return data::valueToText(
        item, data::readValue(item, reinterpret_cast<const uchar*>(record.constData())));
}

bool sameValue(const data::RecordLayout& layout, const FieldPlace& place, const QByteArray& record,
               const QByteArray& other) {
    if (place.equal(record, other))
        return true;
    return place.fields.size() == 1 && !isBit(layout, place.fields.front()) &&
           fieldText(layout, place.fields.front(), record) ==
               fieldText(layout, place.fields.front(), other);
}

}  // namespace vatchange
