#include "data/record/record_layout.h"

#include <algorithm>
#include <utility>

#include "data/error.h"

namespace data {

namespace {

bool isBitMask(quint16 mask) {
    return mask != 0 && mask <= 128 && (mask & (mask - 1)) == 0;
}

bool isOneOf(int length, std::initializer_list<int> lengths) {
    return std::find(lengths.begin(), lengths.end(), length) != lengths.end();
}

// Whether the codec supports this combination of kind, storage type and length.
bool isReadable(const TFieldCacheItem& field) {
    const int length = field.storedLength;
    switch (field.kind()) {
        case Kind::RawBytes:
            return length >= (field.storage == Storage::LVar ? 2 : 1);
        case Kind::String:
            return (field.storage == Storage::LString || field.storage == Storage::ZString ||
                    field.storage == Storage::String) &&
                   length >= 1;
        case Kind::Date:
            return (field.storage == Storage::Date && length == 4) ||
                   (field.storage == Storage::DateDouble && length == 8);
        case Kind::Memo:
            return (field.storage == Storage::Note && length >= 1) ||
                   (field.storage == Storage::Blob && length == 8);
        case Kind::Boolean:
            return (field.storage == Storage::Logical && isOneOf(length, {1, 2})) ||
                   (field.storage == Storage::Bit && length == 1 && isBitMask(field.mask));
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            return (field.storage == Storage::Integer && isOneOf(length, {1, 2, 4, 8})) ||
                   (field.storage == Storage::UnsignedBinary && isOneOf(length, {1, 2, 4})) ||
                   (field.storage == Storage::AutoIncrement && isOneOf(length, {2, 4}));
        case Kind::Float:
            return (field.storage == Storage::Float && isOneOf(length, {4, 8})) ||
                   (field.storage == Storage::Real48 && length == 6);
        case Kind::VarBinary:
            return field.storage == Storage::LVar && length >= 2;
        case Kind::Time:
            return field.storage == Storage::Time && length == 4;
        case Kind::Timestamp:
            return field.storage == Storage::Timestamp && length == 8;
    }
    return false;
}

}  // namespace

RecordLayout::RecordLayout(QString tableName, std::vector<TFieldCacheItem> fields, int recordLength)
    : m_tableName(std::move(tableName)), m_fields(std::move(fields)), m_recordLength(recordLength) {
    int end = 0;
    for (const TFieldCacheItem& field : m_fields) {
        if (!isReadable(field))
            throw DataError(ErrorKind::Damaged, m_tableName,
                            QStringLiteral("field %1: kind %2 with storage type %3, length %4 and "
                                           "mask %5 is none that a record can hold")
                                .arg(field.name)
                                .arg(field.kindWord)
                                .arg(static_cast<int>(field.storage))
                                .arg(field.storedLength)
                                .arg(field.mask))
                .inFinnish(QStringLiteral("kenttä %1: sellaista kenttää ei voi olla (laji %2, "
                                          "tallennus %3, pituus %4)")
                               .arg(field.name)
                               .arg(field.kindWord)
                               .arg(static_cast<int>(field.storage))
                               .arg(field.storedLength));
        const int fieldEnd = field.offset + field.storedLength;
        if (recordLength > 0 && fieldEnd > recordLength)
            throw DataError(ErrorKind::Damaged, m_tableName,
                            QStringLiteral("field %1 ends at byte %2 of a record of %3 bytes")
                                .arg(field.name)
                                .arg(fieldEnd)
                                .arg(recordLength))
                .inFinnish(QStringLiteral("kenttä %1 päättyy tavuun %2, tietueessa on %3 tavua")
                               .arg(field.name)
                               .arg(fieldEnd)
                               .arg(recordLength));
        end = std::max(end, fieldEnd);
    }
    if (m_recordLength <= 0)
        m_recordLength = end;

    m_byName.reserve(fieldCount());
    for (int i = 0; i < fieldCount(); ++i) {
        const QString folded = field(i).name.toCaseFolded();
        if (!m_byName.contains(folded))
            m_byName.insert(folded, i);
    }
}

int RecordLayout::indexOf(const QString& name) const {
    return m_byName.value(name.toCaseFolded(), -1);
}

}  // namespace data
