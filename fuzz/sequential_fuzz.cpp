// Sequential files: any bytes are refused with a place inside them, or read; what was read comes
// back the same after it was written. The first byte chooses the lengths that a record may have.

#include <QBuffer>
#include <QString>
#include <cstdlib>
#include <vector>

#include "tools/zavdb/sequential_file.h"

namespace {

/// @return false when the bytes are no such file.
bool readAll(QByteArray bytes, int shortest, int longest, std::vector<QByteArray>& records) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    tools::SequentialReader reader(buffer, shortest, longest);
    try {
        while (reader.next()) {
            if (reader.bytes().size() < shortest || reader.bytes().size() > longest ||
                reader.offset() >= bytes.size())
                std::abort();
            records.push_back(reader.bytes());
            if (reader.number() != static_cast<qint64>(records.size()))
                std::abort();
        }
    } catch (const tools::SequentialFileError& error) {
        if (QByteArray(error.what()).contains('\n'))
            std::abort();
        return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const int longest = data[0] & 0x7F;
    const int shortest = (data[0] & 0x80) != 0 ? longest / 2 : longest;
    const QByteArray bytes(reinterpret_cast<const char*>(data) + 1,
                           static_cast<qsizetype>(size - 1));
    std::vector<QByteArray> records;
    if (!readAll(bytes, shortest, longest, records))
        return 0;
    QByteArray written;
    QBuffer buffer(&written);
    buffer.open(QIODevice::WriteOnly);
    tools::SequentialWriter writer(buffer);
    for (const QByteArray& record : records)
        writer.add(record);
    writer.finish();
    std::vector<QByteArray> again;
    if (!readAll(written, shortest, longest, again) || again != records)
        std::abort();
    return 0;
}
