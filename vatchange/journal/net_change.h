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
/// Takes in the entry of the same record that came before.
void putBefore(NetChange& change, const data::JournalEntry& earlier);

/// Zeros where the change tells nothing.
QByteArray recordBefore(const NetChange& change, int recordLength);
QByteArray recordAfter(const NetChange& change, int recordLength);

}  // namespace vatchange
