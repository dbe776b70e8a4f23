
#include "data/dictionary/dictionary_source.h"
#include "data/dictionary/tbl_res_reader.h"
#include "data/error.h"
#include "data/record/record_codec.h"
#include "data/record/record_layout.h"
#include "fuzz/fuzz.h"

// Any bytes as a compiled dictionary block and as source text: an error or a table, and a table
// compiles into a block that reads back to the same fields.

namespace {

void recompile(const QString& name, const std::vector<data::TFieldCacheItem>& fields) {
    QByteArray block;
    try {
        block = data::compileBlock(name, fields);
    } catch (const data::DataError&) {
        return;  // numbers out of sequence, an empty name
    }
    std::vector<data::TFieldCacheItem> again;
    require(data::TTblResReader::readBlock(block, name, again));
    require(again == fields);
}

// Every field of an accepted layout can be read from any record.
void readAll(const QString& name, const std::vector<data::TFieldCacheItem>& fields) {
    try {
        const data::RecordLayout layout(name, fields);
        const QByteArray record(layout.recordLength(), '\xA5');
        const auto* bytes = reinterpret_cast<const uchar*>(record.constData());
        for (const data::TFieldCacheItem& field : layout.fields())
            data::valueToText(field, data::readValue(field, bytes));
    } catch (const data::DataError&) {
        return;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = inputBytes(data, size);
    const QString name = QStringLiteral("FUZZ");
    try {
        std::vector<data::TFieldCacheItem> fields;
        if (data::TTblResReader::readBlock(bytes, name, fields)) {
            recompile(name, fields);
            readAll(name, fields);
        }
    } catch (const data::DataError& error) {
        require(!error.finnish().contains(QLatin1Char('\n')));
    }
    try {
        const data::TableSource table = data::parseTableSource(bytes, name);
        recompile(table.name, table.fields);
        readAll(table.name, table.fields);
    } catch (const data::DataError& error) {
        require(!error.english().contains(QLatin1Char('\n')));
    }
    return 0;
}
