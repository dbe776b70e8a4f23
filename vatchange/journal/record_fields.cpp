#include "vatchange/journal/record_fields.h"

#include "data/journal/entry_fields.h"

namespace vatchange {

namespace {

constexpr int kBatch = 10000;

}  // namespace

std::unique_ptr<data::TableFile> openIfThere(data::Database& database, const QString& table) {
    try {
        return database.openTable(table);
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::NoSuchTable)
            throw;
        return nullptr;
    }
}

QString recordKeyText(const data::TableFile& file, const QByteArray& record, data::RecordId id) {
    data::JournalEntry entry;
    entry.record = id;
    entry.key = data::RecordDifference(file.layout(), file.keys()).key(record);
    return data::keyText(file.layout(), file.keys(), entry);
}

void visitAll(data::TableFile& file,
              const std::function<void(data::RecordId, const QByteArray&)>& see) {
    std::optional<data::RecordId> last;
    for (int shown = kBatch; shown == kBatch;) {
        shown = 0;
        last = file.visitStored(last, kBatch, [&](data::RecordId id, const QByteArray& record) {
            ++shown;
            see(id, record);
            return true;
        });
    }
}

}  // namespace vatchange
