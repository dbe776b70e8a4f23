// Any bytes as catalogue rows: either the catalogue or its tables are refused, or their layouts
// read any record and compile into a new company's catalogue. Input: pieces, each a byte with
// catalogue table and length, then the row's bytes.

#include <map>
#include <vector>

#include "data/catalogue/catalogue.h"
#include "data/engine/engine.h"
#include "data/record/record_codec.h"
#include "engines/embedded/catalogue.h"
#include "engines/embedded/key_image.h"
#include "fuzz/fuzz.h"

namespace {

using Rows = std::map<QString, std::vector<QByteArray>>;

// The start of each row is given (numbers, names, flags); the rest is zeros.
Rows takeRows(const uint8_t* data, size_t size) {
    static const QString kTables[] = {data::kFileTable, data::kFieldTable, data::kIndexTable};
    static const std::map<QString, int> kLengths = [] {
        std::map<QString, int> lengths;
        for (const QString& table : kTables)
            lengths[table] = data::compiledLayout(table).recordLength();
        return lengths;
    }();
    Rows rows;
    size_t at = 0;
    while (at < size) {
        const QString& table = kTables[data[at] >> 6 > 2 ? 1 : data[at] >> 6];
        const size_t length = std::min<size_t>(data[at] & 0x3F, size - at - 1);
        QByteArray row = inputBytes(data + at + 1, length);
        row.resize(kLengths.at(table), '\0');
        rows[table].push_back(row);
        at += 1 + length;
    }
    return rows;
}

void useTable(const data::TableDescription& table) {
    const QByteArray record(table.layout.recordLength(), '\xA5');
    const auto* bytes = reinterpret_cast<const uchar*>(record.constData());
    for (const data::TFieldCacheItem& field : table.layout.fields())
        data::valueToText(field, data::readValue(field, bytes));
    for (const data::KeyDef& key : table.keys) {
        const engines::embedded::KeyImage image(table.layout, key);
        require(image.build(record).size() <= image.length());
        data::KeyValues values;
        for (const data::KeySegment& segment : key.segments)
            values.push_back(data::readValue(table.layout.field(segment.fieldIndex), bytes));
        try {
            image.prefix(values);
        } catch (const data::DataError&) {  // a value that no field can store, such as NaN
            continue;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 8192)
        return 0;
    const Rows rows = takeRows(data, size);
    try {
        const data::Catalogue catalogue([&rows](const data::RecordLayout& table, const auto& see) {
            const auto found = rows.find(table.tableName());
            if (found == rows.end())
                return;
            for (const QByteArray& row : found->second)
                see(reinterpret_cast<const uchar*>(row.constData()));
        });
        for (const QString& name : catalogue.tableNames()) {
            require(catalogue.lists(name));
            for (const int recordLength : {0, 100}) {
                try {
                    useTable(catalogue.describe(name, recordLength));
                } catch (const data::DataError& error) {
                    require(!error.english().contains(u'\n'));
                }
            }
        }
    } catch (const data::DataError& error) {
        require(error.kind() == data::ErrorKind::Damaged);
    }
    return 0;
}
