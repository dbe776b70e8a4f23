#include "vatchange/journal/net_change.h"

#include <algorithm>

#include "data/error.h"

namespace vatchange {

namespace {

using data::ByteChange;
using data::Operation;

/// Changed bytes of a record, one by one.
struct Bytes {
    QByteArray before;
    QByteArray after;
    std::vector<bool> touched;

    explicit Bytes(qsizetype length)
        : before(length, '\0'), after(length, '\0'), touched(static_cast<size_t>(length)) {}

    void put(const ByteChange& change) {
        const qsizetype length = std::max(change.before.size(), change.after.size());
        before.replace(change.offset, change.before.size(), change.before);
        after.replace(change.offset, change.after.size(), change.after);
        for (qsizetype i = change.offset; i < change.offset + length; ++i)
            touched[static_cast<size_t>(i)] = true;
    }

    /// An earlier change: what it replaced, and what it left where no later one wrote.
    void putEarlier(const ByteChange& change) {
        const qsizetype length = std::max(change.before.size(), change.after.size());
        for (qsizetype i = 0; i < length; ++i) {
            const qsizetype at = change.offset + i;
            before[at] = i < change.before.size() ? change.before[i] : '\0';
            if (!touched[static_cast<size_t>(at)])
                after[at] = i < change.after.size() ? change.after[i] : '\0';
            touched[static_cast<size_t>(at)] = true;
        }
    }

    std::vector<ByteChange> changes() const {
        std::vector<ByteChange> runs;
        const auto length = static_cast<qsizetype>(touched.size());
        for (qsizetype at = 0; at < length;) {
            if (!touched[static_cast<size_t>(at)]) {
                ++at;
                continue;
            }
            qsizetype end = at;
            while (end < length && touched[static_cast<size_t>(end)])
                ++end;
            runs.push_back(
                {static_cast<int>(at), before.mid(at, end - at), after.mid(at, end - at)});
            at = end;
        }
        return runs;
    }
};

qsizetype endOf(const std::vector<ByteChange>& changes) {
    qsizetype end = 0;
    for (const ByteChange& change : changes)
        end = std::max(end, change.offset + std::max(change.before.size(), change.after.size()));
    return end;
}

QByteArray image(const NetChange& change, QByteArray ByteChange::*side, int recordLength) {
    if (endOf(change.changes) > recordLength)
        throw data::DataError(data::ErrorKind::Damaged, QStringLiteral("run journal"),
                              QStringLiteral("entry %1 is longer than its record").arg(change.seq))
            .inFinnish(QStringLiteral("ajopäiväkirjan merkintä %1 on vioittunut").arg(change.seq));
    QByteArray record(recordLength, '\0');
    for (const ByteChange& part : change.changes)
        record.replace(part.offset, (part.*side).size(), part.*side);
    return record;
}

}  // namespace

NetChange netChangeOf(const data::JournalEntry& entry) {
    NetChange change{entry.seq,       entry.table, entry.record, false,
                     entry.operation, entry.key,   entry.changes};
    for (ByteChange& part : change.changes) {
        const qsizetype length = std::max(part.before.size(), part.after.size());
        part.before.resize(length, '\0');
        part.after.resize(length, '\0');
    }
    return change;
}

void putBefore(NetChange& change, const data::JournalEntry& earlier) {
    Bytes bytes(std::max(endOf(change.changes), endOf(earlier.changes)));
    for (const ByteChange& part : change.changes)
        bytes.put(part);
    for (const ByteChange& part : earlier.changes)
        bytes.putEarlier(part);
    change.changes = bytes.changes();
    const bool isThereAfter = !change.nothing && change.operation != Operation::Delete;
    const bool wasThere = earlier.operation != Operation::Insert;
    change.nothing = !wasThere && !isThereAfter;
    change.operation = !wasThere       ? Operation::Insert
                       : !isThereAfter ? Operation::Delete
                                       : Operation::Update;
    if (change.key.isEmpty())
        change.key = earlier.key;
}

QByteArray recordBefore(const NetChange& change, int recordLength) {
    return image(change, &ByteChange::before, recordLength);
}

QByteArray recordAfter(const NetChange& change, int recordLength) {
    return image(change, &ByteChange::after, recordLength);
}

}  // namespace vatchange
