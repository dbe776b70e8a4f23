#pragma once

#include <QByteArray>

#include "data/record/record_codec.h"

namespace test {

/// A field at the start of a record, as from a dictionary.
inline data::TFieldCacheItem field(data::Kind kind, data::Storage storage, int length, int mask = 0,
                                   int offset = 0) {
    data::TFieldCacheItem item;
    item.number = 1;
    item.name = QStringLiteral("Kentta");
    item.kindWord = static_cast<quint32>(kind);
    item.storage = storage;
    item.storedLength = static_cast<quint16>(length);
    item.declaredLength = item.storedLength;
    item.mask = static_cast<quint16>(mask);
    item.offset = static_cast<quint16>(offset);
    return item;
}

/// Bytes from hexadecimal digits; blanks are ignored.
inline QByteArray bytes(const char* hex) {
    return QByteArray::fromHex(hex);
}

/// The bytes after writing `value` to a record filled with FF.
inline QByteArray written(const data::TFieldCacheItem& field, const data::Value& value) {
    QByteArray record(field.offset + field.storedLength, '\xFF');
    data::writeValue(field, reinterpret_cast<uchar*>(record.data()), value,
                     QStringLiteral("TAULU"));
    return record.mid(field.offset);
}

inline data::Value readBack(const data::TFieldCacheItem& field, const QByteArray& record) {
    return data::readValue(field, reinterpret_cast<const uchar*>(record.constData()));
}

}  // namespace test
