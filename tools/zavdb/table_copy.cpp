#include "tools/zavdb/table_copy.h"

#include <algorithm>

#include "data/record/record_codec.h"
#include "tools/zavdb/command.h"

namespace tools {

namespace {

constexpr int kMaxRecords = 1000;
constexpr int kMaxBytes = 4 * 1024 * 1024;
constexpr int kRemoveBatch = 500;
constexpr int kMaxFindings = 10;

/// Reads a table's records in stored order, in batches.
class StoredWalk {
  public:
    explicit StoredWalk(data::TableFile& records, BelongsToCopy belongs = {})
        : m_records(records), m_belongs(std::move(belongs)) {}

    /// The next `max` records that belong; fewer only at the end.
    const std::vector<QByteArray>& next(int max) {
        m_batch.clear();
        while (!m_ended && static_cast<int>(m_batch.size()) < max) {
            const int wanted = max - static_cast<int>(m_batch.size());
            const std::optional<data::RecordId> last = m_records.visitStored(
                m_at, wanted, [this](data::RecordId, const QByteArray& bytes) {
                    if (!m_belongs || m_belongs(bytes))
                        m_batch.emplace_back(bytes.constData(), bytes.size());
                    return true;
                });
            m_ended = !last;
            if (last)
                m_at = last;
        }
        return m_batch;
    }

  private:
    data::TableFile& m_records;
    BelongsToCopy m_belongs;
    std::optional<data::RecordId> m_at;
    bool m_ended = false;
    std::vector<QByteArray> m_batch;
};

int batchSize(const data::TableFile& records) {
    return std::clamp(kMaxBytes / std::max(records.layout().recordLength(), 1), 1, kMaxRecords);
}

/// The record for messages.
QString named(const data::TableFile& records, const QByteArray& record, qint64 number) {
    QString name = QStringLiteral("%1, record %2").arg(records.layout().tableName()).arg(number);
    if (records.keys().empty())
        return name;
    QStringList parts;
    for (const data::KeySegment& segment : records.keys().front().segments) {
        const data::TFieldCacheItem& field = records.layout().field(segment.fieldIndex);
        const data::Value value =
            data::readValue(field, reinterpret_cast<const uchar*>(record.constData()));
        parts.append(QStringLiteral("%1 \"%2\"").arg(field.name, data::valueToText(field, value)));
    }
    return name + QStringLiteral(" (%1)").arg(parts.join(QStringLiteral(", ")));
}

void insertAs(data::TableFile& target, const QByteArray& record, qint64 number) {
    QByteArray stored = record;
    try {
        const data::RecordId id = target.insert(stored);
        if (stored != record)  // an auto-increment number of 0 was replaced
            target.update(id, record);
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::DuplicateKey &&
            error.kind() != data::ErrorKind::BadValue)
            throw;
        throw CommandError(QStringLiteral("%1 cannot be copied: %2")
                               .arg(named(target, record, number), error.english()));
    }
}

/// @return the number of records inserted; nothing if the target's records differ from the
/// source's.
std::optional<qint64> appendMissing(data::TableFile& source, data::Database& targetDatabase,
                                    data::TableFile& target, const BelongsToCopy& belongs,
                                    const CopyProgress& progress) {
    const int size = batchSize(source);
    StoredWalk from(source, belongs);
    StoredWalk to(target);
    qint64 copied = 0;
    qint64 inserted = 0;
    bool isThere = true;
    while (true) {
        const std::vector<QByteArray>& records = from.next(size);
        size_t same = 0;
        if (isThere) {
            const std::vector<QByteArray>& there =
                to.next(std::max<int>(static_cast<int>(records.size()), 1));
            if (there.size() > records.size() ||
                !std::equal(there.begin(), there.end(), records.begin()))
                return std::nullopt;
            same = there.size();
            isThere = same == records.size();
        }
        if (records.empty())
            return inserted;
        if (same < records.size()) {
            targetDatabase.inTransaction([&] {
                for (size_t i = same; i < records.size(); ++i)
                    insertAs(target, records[i], copied + static_cast<qint64>(i) + 1);
            });
            inserted += static_cast<qint64>(records.size() - same);
        }
        copied += static_cast<qint64>(records.size());
        progress(copied);
    }
}

}  // namespace

void removeAll(data::TableFile& records) {
    while (true) {
        std::vector<data::RecordId> ids;
        records.visitStored(std::nullopt, kRemoveBatch, [&](data::RecordId id, const QByteArray&) {
            ids.push_back(id);
            return true;
        });
        if (ids.empty())
            return;
        for (const data::RecordId id : ids)
            records.remove(id);
    }
}

qint64 copyTable(data::TableFile& source, data::Database& targetDatabase, data::TableFile& target,
                 const BelongsToCopy& belongs, const CopyProgress& progress) {
    std::optional<qint64> inserted =
        appendMissing(source, targetDatabase, target, belongs, progress);
    if (!inserted) {
        targetDatabase.inTransaction([&] { removeAll(target); });
        inserted = appendMissing(source, targetDatabase, target, belongs, progress);
    }
    if (!inserted)
        throw CommandError(QStringLiteral("Table %1 changes while it is copied.")
                               .arg(source.layout().tableName()));
    return *inserted;
}

Comparison compareTables(data::TableFile& source, data::TableFile& target,
                         const BelongsToCopy& belongs, const CopyProgress& progress) {
    const int size = batchSize(source);
    StoredWalk from(source, belongs);
    StoredWalk to(target);
    Comparison result;
    qint64 copied = 0;
    qint64 differing = 0;
    while (true) {
        const std::vector<QByteArray>& records = from.next(size);
        const std::vector<QByteArray>& copies = to.next(size);
        if (records.empty() && copies.empty())
            break;
        for (size_t i = 0; i < std::min(records.size(), copies.size()); ++i) {
            if (records[i] == copies[i])
                continue;
            const auto at = std::mismatch(records[i].begin(), records[i].end(), copies[i].begin(),
                                          copies[i].end());
            if (++differing <= kMaxFindings)
                result.findings.append(
                    QStringLiteral("%1: differs from byte %2 on")
                        .arg(named(source, records[i], result.records + static_cast<qint64>(i) + 1))
                        .arg(at.first - records[i].begin()));
        }
        result.records += static_cast<qint64>(records.size());
        copied += static_cast<qint64>(copies.size());
        progress(result.records);
    }
    const QString& name = source.layout().tableName();
    if (differing > kMaxFindings)
        result.findings.append(
            QStringLiteral("%1: %2 more differ").arg(name).arg(differing - kMaxFindings));
    if (result.records != copied)
        result.findings.append(QStringLiteral("%1: %2, but %3 in the copy")
                                   .arg(name, counted(result.records, QStringLiteral("record")))
                                   .arg(copied));
    return result;
}

}  // namespace tools
