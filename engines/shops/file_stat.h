#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "engines/data_names.h"

namespace engines::shops {

/// One segment of a key in the file's description.
struct SegmentStat {
    int offset = 0;  ///< in the record, from 0
    int length = 0;
    int type = 0;  ///< the engine's data type code, as in Storage
    bool descending = false;
    QByteArray weights;  ///< 256: the collating weight of each character; empty: the character
};

struct KeyStat {
    int number = 0;
    bool duplicates = false;
    /// Duplicates are ordered by address; else by insertion into the key.
    bool byAddress = false;
    std::vector<SegmentStat> segments;
    int length = 0;
};

/// The engine's description of an open file.
struct FileStat {
    int recordLength = 0;         ///< of the fixed part
    bool variableLength = false;  ///< records may be longer
    qint64 recordCount = 0;
    std::vector<KeyStat> keys;  ///< by number, without gaps before the highest
};

/// Longest result of the stat operation, in bytes.
inline constexpr int kMaxStatLength = 33455;

/// Parses the result of the stat operation (key number 0); the bytes are untrusted.
/// @throws DataError(Damaged) naming the table.
FileStat parseFileStat(const QByteArray& bytes, const QString& table);

}  // namespace engines::shops
