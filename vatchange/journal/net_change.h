#pragma once

#include "data/engine/run_journal.h"

namespace vatchange {

/// What a run did to one record, all its entries of the record taken together.
struct NetChange {
    qint64 seq = 0;  ///< of the last entry
    int table = 0;
    data::RecordId record = 0;
    bool nothing = false;  ///< inserted and deleted again
    data::Operation operation = data::Operation::Update;
    QByteArray key;
    /// By offset, disjoint, `before` and `after` of equal length; what the record did not have is
    /// zero.
    std::vector<data::ByteChange> changes;
};

NetChange netChangeOf(const data::JournalEntry& entry);
/// Merges an earlier entry of the same record.
void putBefore(NetChange& change, const data::JournalEntry& earlier);

/// The record's bytes before (after) the change; zero where it did not change them.
QByteArray recordBefore(const NetChange& change, int recordLength);
QByteArray recordAfter(const NetChange& change, int recordLength);

}  // namespace vatchange
