#include "tools/zavdb/table_export.h"

#include "data/record/record_codec.h"
#include "platform/csv.h"

namespace tools {

namespace {

constexpr int kBatch = 200;

}  // namespace

qint64 exportTable(data::TableFile& records, QIODevice& output) {
    const std::vector<data::TFieldCacheItem>& fields = records.layout().fields();
    platform::CsvWriter writer(output);
    for (const data::TFieldCacheItem& field : fields)
        writer.add(field.name);
    writer.endRecord();
    qint64 rows = 0;
    std::vector<data::StoredRecord> batch = records.fromEnd(0, data::Direction::Forward, kBatch);
    while (!batch.empty()) {
        for (const data::StoredRecord& record : batch) {
            const auto* bytes = reinterpret_cast<const uchar*>(record.bytes.constData());
            for (const data::TFieldCacheItem& field : fields)
                writer.add(data::valueToText(field, data::readValue(field, bytes)));
            writer.endRecord();
            ++rows;
        }
        batch = records.next(0, batch.back(), data::Direction::Forward, kBatch);
    }
    writer.flush();
    return rows;
}

}  // namespace tools
