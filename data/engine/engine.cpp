#include "data/engine/engine.h"

#include <algorithm>

#include "data/record/record_codec.h"

// Default implementations, record by record.

namespace data {

namespace {

constexpr int kBatch = 512;

std::vector<StoredRecord> batch(TableFile& file, int key, const std::optional<StoredRecord>& from,
                                Direction direction, qint64 max) {
    const int size = static_cast<int>(std::min<qint64>(max, kBatch));
    return from ? file.next(key, *from, direction, size) : file.fromEnd(key, direction, size);
}

}  // namespace

std::optional<StoredRecord> TableFile::skip(int key, const std::optional<StoredRecord>& from,
                                            Direction direction, qint64 count) {
    std::optional<StoredRecord> at = from;
    qint64 passed = 0;
    while (passed < count) {
        std::vector<StoredRecord> records = batch(*this, key, at, direction, count - passed);
        if (records.empty())
            return std::nullopt;
        passed += static_cast<qint64>(records.size());
        at = std::move(records.back());
    }
    return at;
}

qint64 TableFile::countBetween(int key, const std::optional<StoredRecord>& from,
                               const StoredRecord& to) {
    // Walks back from `to`: neither end needs to exist.
    KeyValues first;
    if (from) {
        for (const KeySegment& segment : keys()[static_cast<size_t>(key)].segments)
            first.push_back(readValue(layout().field(segment.fieldIndex),
                                      reinterpret_cast<const uchar*>(from->bytes.constData())));
    }
    qint64 count = 0;
    std::optional<StoredRecord> at = to;
    while (true) {
        std::vector<StoredRecord> records = batch(*this, key, at, Direction::Backward, kBatch);
        if (records.empty())
            return count;
        for (const StoredRecord& record : records) {
            const int order = from ? compare(key, record.bytes, first) : 1;
            if (order < 0 || (order == 0 && record.id < from->id))
                return count;
            ++count;
        }
        at = std::move(records.back());
    }
}

std::optional<StoredRecord> TableFile::visit(int key, const std::optional<StoredRecord>& from,
                                             Direction direction, int max, const Visitor& see) {
    std::optional<StoredRecord> at = from;
    std::optional<StoredRecord> last;
    qint64 left = max;
    while (left > 0) {
        std::vector<StoredRecord> records = batch(*this, key, at, direction, left);
        if (records.empty())
            return last;
        left -= static_cast<qint64>(records.size());
        for (StoredRecord& record : records) {
            const bool more = see(record.id, record.bytes);
            last = std::move(record);
            if (!more)
                return last;
        }
        at = last;
    }
    return last;
}

std::optional<RecordId> TableFile::visitStored(std::optional<RecordId> after, int max,
                                               const Visitor& see) {
    std::optional<StoredRecord> from;
    if (after) {
        from = get(*after);
        if (!from)
            throw DataError(ErrorKind::Gone, layout().tableName(),
                            QStringLiteral("the record was removed meanwhile"))
                .inFinnish(QStringLiteral("toinen ohjelma poisti sen"));
    }
    const std::optional<StoredRecord> last = visit(0, from, Direction::Forward, max, see);
    return last ? std::optional(last->id) : std::nullopt;
}

std::optional<StoredRecord> TableFile::visitIds(int key, const std::optional<StoredRecord>& from,
                                                int max, const std::function<void(RecordId)>& see) {
    return visit(key, from, Direction::Forward, max, [&see](RecordId id, const QByteArray&) {
        see(id);
        return true;
    });
}

}  // namespace data
