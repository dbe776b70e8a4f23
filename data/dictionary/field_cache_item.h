#pragma once

#include <QString>
#include <QtGlobal>

namespace data {

/// Low 16 bits of a dictionary entry's kind word.
enum class Kind : quint16 {
    RawBytes = 0,
    String = 1,
    Date = 2,
    Memo = 3,
    Boolean = 4,
    SmallInt = 5,
    Integer = 6,
    Float = 7,
    VarBinary = 9,
    Time = 10,
    Timestamp = 11,
    Unsigned = 12,
    LargeInt = 18
};

/// On-disk encoding: the shops' engine's data type codes, and two more of the dictionary's.
enum class Storage : quint16 {
    String = 0,           ///< blank-padded characters
    Integer = 1,          ///< signed, little-endian, 1, 2, 4 or 8 bytes
    Float = 2,            ///< IEEE, 4 or 8 bytes
    Date = 3,             ///< day, month, 16-bit year; all zero is empty
    Time = 4,             ///< hundredths, seconds, minutes, hours
    Logical = 7,          ///< one byte, 0 is false
    LString = 10,         ///< length byte, then characters
    ZString = 11,         ///< characters and a terminating zero
    Note = 12,            ///< text up to a terminator inside a fixed area
    LVar = 13,            ///< length word, then bytes
    UnsignedBinary = 14,  ///< unsigned, little-endian, 1 or 2 bytes
    AutoIncrement = 15,   ///< signed 32-bit; 0 on insert is replaced by the next number
    Bit = 16,             ///< one bit of the byte at the offset, see mask
    Timestamp = 20,       ///< 8 bytes
    Blob = 21,            ///< 8 bytes: offset and length
    Guid = 27,            ///< 16 raw bytes
    DateDouble = 244,     ///< double: days since 1899-12-30; 0 is empty
    Real48 = 255          ///< six-byte floating point
};

/// One field of a table as read from its dictionary.
struct TFieldCacheItem {
    static constexpr int kMaxNameLength = 31;

    quint16 number = 0;    ///< 1, 2, 3 ... in entry order, so its index in the table is number - 1
    QString name;          ///< at most kMaxNameLength characters
    quint32 kindWord = 0;  ///< Kind in the low 16 bits, a qualifier in the high ones
    quint16 size = 0;      ///< characters for a string, bytes otherwise (4 for a boolean)
    quint16 mask = 0;      ///< the bit of a Storage::Bit field
    quint16 offset = 0;    ///< byte offset in the record
    quint16 storedLength = 0;  ///< bytes occupied in the record
    Storage storage = Storage::String;
    quint16 declaredLength = 0;  ///< second copy of storedLength

    Kind kind() const { return static_cast<Kind>(kindWord & 0xFFFF); }
    quint16 qualifier() const { return static_cast<quint16>(kindWord >> 16); }

    bool operator==(const TFieldCacheItem&) const = default;
};

}  // namespace data
