#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <vector>

#include "data/dictionary/key_def.h"
#include "data/engine/run_journal.h"
#include "data/record/record_layout.h"

namespace data {

// The bytes of a stored journal entry. An entry begins with its kind:
//
//     change  table, record, origin, key, then for each changed place: gap from the place before,
//             length, old bytes (not of an insert), new bytes (not of a delete)
//     mark    text
//
// and ends with a check sum over its place (run and seq) and its bytes, so that a flipped byte or
// an entry in another's place is noticed. Numbers have 7 bits a byte, the lowest first; a key has
// its length before it. A table is stored as its name, record length and fingerprint.

/// Finds the differences to store: compares records field by field.
class RecordDifference {
  public:
    RecordDifference(const RecordLayout& layout, const std::vector<KeyDef>& keys);

    /// The places that differ, each covering whole fields (fields that share bytes together).
    std::vector<ByteChange> between(const QByteArray& before, const QByteArray& after) const;
    /// The places that are not zero.
    std::vector<ByteChange> ofInsert(const QByteArray& after) const;
    std::vector<ByteChange> ofDelete(const QByteArray& before) const;
    /// The bytes of key 0's fields, concatenated, without trailing zero bytes.
    QByteArray key(const QByteArray& record) const;

  private:
    struct Place {
        int offset;
        int length;
    };
    std::vector<Place> m_places;  // disjoint, by offset, covering the record
    std::vector<Place> m_keyPlaces;
};

/// Identifies a table's description: its record length, fields and key 0.
QByteArray layoutFingerprint(const RecordLayout& layout, const std::vector<KeyDef>& keys);

QByteArray encodeTable(const JournalTable& table, qint64 run, qint64 number);
/// @throws DataError(Damaged).
JournalTable decodeTable(QByteArrayView bytes, qint64 run, qint64 number);

/// `seq` replaces the entry's own.
QByteArray encodeEntry(const JournalEntry& entry, qint64 run, qint64 seq);
/// @throws DataError(Damaged) naming run and entry.
JournalEntry decodeEntry(QByteArrayView bytes, qint64 run, qint64 seq);

/// Check sum over a note's place and bytes.
QByteArray noteChecksum(qint64 run, const QString& name, const QByteArray& value);

}  // namespace data
