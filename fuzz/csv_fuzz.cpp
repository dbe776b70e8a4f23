// Any bytes as CSV: refused, or read; rows read come back the same after writing.

#include <QBuffer>
#include <vector>

#include "fuzz/fuzz.h"
#include "platform/csv.h"

namespace {

using Rows = std::vector<std::vector<QString>>;

/// @return false if the bytes are not CSV or not UTF-8.
bool readAll(QByteArray bytes, Rows& rows) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    try {
        platform::CsvReader reader(buffer);
        while (reader.next()) {
            std::vector<QString> row(static_cast<size_t>(reader.fieldCount()));
            for (int i = 0; i < reader.fieldCount(); ++i)
                if (!platform::decodeUtf8(reader.field(i), row[static_cast<size_t>(i)]))
                    return false;
            rows.push_back(std::move(row));
        }
    } catch (const platform::CsvError&) {
        return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Rows rows;
    const QByteArray bytes = inputBytes(data, size);
    if (!readAll(bytes, rows))
        return 0;
    QByteArray written;
    QBuffer buffer(&written);
    buffer.open(QIODevice::WriteOnly);
    platform::CsvWriter writer(buffer);
    for (const std::vector<QString>& row : rows) {
        for (const QString& field : row)
            writer.add(field);
        writer.endRecord();
    }
    writer.flush();
    Rows again;
    require(readAll(written, again) && again == rows);
    return 0;
}
