#pragma once

#include <QString>
#include <memory>
#include <optional>

#include "data/engine/engine.h"
#include "data/journal/entry_codec.h"
#include "data/record/record_codec.h"

namespace vatchange {

// Reading records of tables whose layout is the company's own.

inline bool isInteger(const data::TFieldCacheItem& field) {
    switch (field.kind()) {
        case data::Kind::Boolean:
        case data::Kind::SmallInt:
        case data::Kind::Integer:
        case data::Kind::Unsigned:
        case data::Kind::LargeInt:
            return true;
        default:
            return false;
    }
}

inline double amountOf(const data::TFieldCacheItem& field, const uchar* record) {
    return field.kind() == data::Kind::Float ? data::readFloat(field, record)
                                             : data::readValue(field, record).toDouble();
}

inline qint64 integerOf(const data::TFieldCacheItem& field, const uchar* record) {
    return isInteger(field) ? data::readInteger(field, record)
                            : data::readValue(field, record).toLongLong();
}

inline const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

/// The field of a name; nullptr if the table has none.
inline const data::TFieldCacheItem* fieldOf(const data::RecordLayout& layout, const char* name) {
    const int index = layout.indexOf(QLatin1String(name));
    return index < 0 ? nullptr : &layout.field(index);
}

/// The field's bytes in a record as a text.
inline QString textOf(const data::TFieldCacheItem& field, const QByteArray& record) {
    return data::valueToText(field, data::readValue(field, bytesOf(record)));
}

/// A table, or nothing if the company has none of that name.
/// @throws data::DataError for other failures.
std::unique_ptr<data::TableFile> openIfThere(data::Database& database, const QString& table);

/// The fields of key 0 of a record, joined by a blank.
QString recordKeyText(const data::TableFile& file, const QByteArray& record, data::RecordId id);

/// Shows all records in storage order.
void visitAll(data::TableFile& file,
              const std::function<void(data::RecordId, const QByteArray&)>& see);

}  // namespace vatchange
