#include <QString>

#include "data/dictionary/dictionary_source.h"
#include "data/error.h"
#include "data/record/filter.h"
#include "fuzz/fuzz.h"

// Any text as a filter: a DataError, or it accepts or rejects any record. Input: a length byte, the
// record's bytes (padded), then the expression.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const data::TableSource source = data::parseTableSource(
        "table F\n"
        "field 1 Nro integer 4 0 4 INTEGER\n"
        "field 2 Nimi string 10 4 11 LSTRING\n"
        "field 3 Hinta float 4 15 4 FLOAT\n"
        "field 4 Pvm date 4 19 4 DATE\n"
        "field 5 Kello time 4 23 4 TIME\n"
        "field 6 Muutettu timestamp 8 27 8 TIMESTAMP\n"
        "field 7 Lippu boolean 4 35 1 BIT 4\n"
        "field 8 Tarkka float 6 36 6 REAL48\n"
        "field 9 Teksti memo:22 9 42 10 NOTE\n"
        "field 10 Luku largeint 8 52 8 INTEGER\n",
        QStringLiteral("fuzz.dict"));
    static const data::RecordLayout layout(source.name, source.fields, source.span());
    if (size == 0)
        return 0;
    const size_t recordBytes = std::min<size_t>(bytes[0], size - 1);
    QByteArray record = inputBytes(bytes + 1, recordBytes);
    record.resize(layout.recordLength(), '\0');
    const QString expression = inputText(bytes + 1 + recordBytes, size - 1 - recordBytes);
    try {
        const data::Filter filter(expression, layout);
        filter.accepts(record);
    } catch (const data::DataError& error) {
        require(!error.detail().isEmpty());
    }
    return 0;
}
