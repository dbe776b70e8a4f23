#include "engines/shops/file_stat.h"

#include <QtEndian>
#include <algorithm>

#include "data/dictionary/field_cache_item.h"
#include "data/error.h"

namespace engines::shops {

namespace {

// File description: record length, page size, number of keys (words), number of records (32
// bits), file flags (word), four bytes more.
constexpr int kFileDescriptionSize = 16;
constexpr int kKeyCountOffset = 4;
constexpr int kRecordCountOffset = 6;
constexpr int kFileFlagsOffset = 10;
// Key segment: position, length, flags (words), number of values (32
// bits), type, null value, two bytes more, key number, number of its collating sequence.
constexpr int kKeySegmentSize = 16;
constexpr int kKeyFlagsOffset = 4;
constexpr int kKeyTypeOffset = 10;
constexpr int kKeyNumberOffset = 14;
constexpr int kCollationOffset = 15;
// Collating sequence: a signature, its name, the weights.
constexpr int kCollationSize = 265;
constexpr int kCollationNameSize = 8;
constexpr uchar kCollationSignature = 0xAC;

constexpr int kMaxKeys = 119;
constexpr int kMaxKeyLength = 255;

enum FileFlag : int { kVariableLength = 0x01 };

enum KeyFlag : int {
    kDuplicates = 0x01,
    kBinary = 0x04,
    kSegmented = 0x10,
    kCollated = 0x20,
    kDescending = 0x40,
    kRepeatingDuplicates = 0x80,
    kExtendedType = 0x100,
    kNoCase = 0x400
};

[[noreturn]] void damaged(const QString& table, const QString& detail) {
    throw DataError(ErrorKind::Damaged, table, QStringLiteral("the file's description: ") + detail);
}

int wordAt(const QByteArray& bytes, qsizetype place) {
    return qFromLittleEndian<quint16>(bytes.constData() + place);
}

QByteArray upperCaseWeights() {
    QByteArray weights(256, '\0');
    for (int c = 0; c < 256; ++c)
        weights[c] = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    return weights;
}

bool isText(int type) {
    return type == static_cast<int>(Storage::String) ||
           type == static_cast<int>(Storage::LString) || type == static_cast<int>(Storage::ZString);
}

class StatReader {
  public:
    StatReader(const QByteArray& bytes, const QString& table) : m_bytes(bytes), m_table(table) {}

    FileStat read() {
        if (m_bytes.size() < kFileDescriptionSize)
            damaged(m_table, QStringLiteral("only %1 bytes").arg(m_bytes.size()));
        m_stat.recordLength = wordAt(m_bytes, 0);
        m_stat.recordCount = qFromLittleEndian<quint32>(m_bytes.constData() + kRecordCountOffset);
        m_stat.variableLength = (wordAt(m_bytes, kFileFlagsOffset) & kVariableLength) != 0;
        const int keys = wordAt(m_bytes, kKeyCountOffset);
        if (keys > kMaxKeys)
            damaged(m_table, QStringLiteral("%1 keys").arg(keys));
        readKeys(keys);
        readCollations();
        fillGaps();
        return std::move(m_stat);
    }

  private:
    void readKeys(int count) {
        m_place = kFileDescriptionSize;
        for (int i = 0; i < count; ++i) {
            KeyStat key;
            bool more = true;
            while (more) {
                if (m_place + kKeySegmentSize > m_bytes.size())
                    damaged(m_table, QStringLiteral("it ends within key %1").arg(i));
                more = readSegment(key);
                m_place += kKeySegmentSize;
            }
            m_stat.keys.push_back(std::move(key));
        }
    }

    // @return true if another segment of the key follows.
    bool readSegment(KeyStat& key) {
        const int flags = wordAt(m_bytes, m_place + kKeyFlagsOffset);
        SegmentStat segment;
        segment.offset = wordAt(m_bytes, m_place) - 1;
        segment.length = wordAt(m_bytes, m_place + 2);
        segment.descending = (flags & kDescending) != 0;
        if ((flags & kExtendedType) != 0)
            segment.type = static_cast<uchar>(m_bytes[m_place + kKeyTypeOffset]);
        else
            segment.type = static_cast<int>((flags & kBinary) != 0 ? Storage::UnsignedBinary
                                                                   : Storage::String);
        key.number = static_cast<uchar>(m_bytes[m_place + kKeyNumberOffset]);
        key.duplicates = (flags & kDuplicates) != 0;
        key.byAddress = (flags & kRepeatingDuplicates) != 0;
        key.length += segment.length;
        const int end = segment.offset + segment.length;
        if (segment.offset < 0 || segment.length < 1 || key.length > kMaxKeyLength ||
            end > m_stat.recordLength)
            damaged(m_table, QStringLiteral("key %1 has a segment of %2 bytes at byte %3")
                                 .arg(key.number)
                                 .arg(segment.length)
                                 .arg(segment.offset));
        // Both flags may mark a numbered collating sequence.
        m_collations.push_back((flags & kCollated) != 0
                                   ? static_cast<uchar>(m_bytes[m_place + kCollationOffset])
                                   : kNoCollation);
        if ((flags & kCollated) == 0 && (flags & kNoCase) != 0 && isText(segment.type))
            segment.weights = upperCaseWeights();
        key.segments.push_back(std::move(segment));
        return (flags & kSegmented) != 0;
    }

    void readCollations() {
        std::vector<QByteArray> weights;
        for (; m_place + kCollationSize <= m_bytes.size() &&
               static_cast<uchar>(m_bytes[m_place]) == kCollationSignature;
             m_place += kCollationSize)
            weights.push_back(m_bytes.mid(m_place + 1 + kCollationNameSize, 256));
        size_t segmentNumber = 0;
        for (KeyStat& key : m_stat.keys) {
            for (SegmentStat& segment : key.segments) {
                const int wanted = m_collations[segmentNumber++];
                if (wanted == kNoCollation || !isText(segment.type))
                    continue;
                if (wanted >= static_cast<int>(weights.size()))
                    damaged(m_table, QStringLiteral("key %1 has the collating sequence %2, which "
                                                    "is not given as a table")
                                         .arg(key.number)
                                         .arg(wanted));
                segment.weights = weights[static_cast<size_t>(wanted)];
            }
        }
    }

    void fillGaps() {
        std::sort(m_stat.keys.begin(), m_stat.keys.end(),
                  [](const KeyStat& a, const KeyStat& b) { return a.number < b.number; });
        std::vector<KeyStat> keys;
        for (KeyStat& key : m_stat.keys) {
            if (!keys.empty() && keys.back().number == key.number)
                damaged(m_table, QStringLiteral("two keys have the number %1").arg(key.number));
            if (key.number >= kMaxKeys)  // the engine's own key of the time of insertion
                continue;
            while (static_cast<int>(keys.size()) < key.number) {
                KeyStat gap;
                gap.number = static_cast<int>(keys.size());
                keys.push_back(std::move(gap));
            }
            keys.push_back(std::move(key));
        }
        m_stat.keys = std::move(keys);
    }

    static constexpr int kNoCollation = -1;

    const QByteArray& m_bytes;
    const QString& m_table;
    qsizetype m_place = 0;
    FileStat m_stat;
    std::vector<int> m_collations;  // of each segment, in the order read
};

}  // namespace

FileStat parseFileStat(const QByteArray& bytes, const QString& table) {
    return StatReader(bytes, table).read();
}

}  // namespace engines::shops
