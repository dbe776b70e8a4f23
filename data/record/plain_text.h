#pragma once

#include <QByteArrayView>

#include "data/dictionary/field_cache_item.h"

namespace data {

/// Stores a value's text form (as of textToValue(), in UTF-8) if it is one of the everyday forms of
/// the common storages: a plain number, 0 or 1, a date, a text of Latin letters. For bulk loads.
/// @return false for any other text, also one that the field cannot store: the record is then
/// unchanged, and textToValue() and writeValue() tell.
bool writePlainText(const TFieldCacheItem& field, uchar* record, QByteArrayView text);

}  // namespace data
