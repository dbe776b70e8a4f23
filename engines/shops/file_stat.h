#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "engines/data_names.h"

namespace engines::shops {

/// One segment of a key as its file tells it.
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
    /// Records of one value are in the order of their addresses; else in that of their insertion
    /// into the key.
    bool byAddress = false;
    std::vector<SegmentStat> segments;
    int length = 0;
};

/// What the engine tells of an open file.
struct FileStat {
    int recordLength = 0;         ///< of the fixed part
    bool variableLength = false;  ///< records may go on beyond it
    qint64 recordCount = 0;
    std::vector<KeyStat> keys;  ///< by number, without gaps before the highest
};

/// Length of the longest answer of the stat operation.
inline constexpr int kMaxStatLength = 33455;

/// Reads the answer of the stat operation (key number 0). The bytes come from outside: nothing in
/// them is trusted. @throws DataError(Damaged) naming the table.
FileStat parseFileStat(const QByteArray& bytes, const QString& table);

}  // namespace engines::shops
