// Any bytes as a sequential file: refused with a position inside them, or read; records read come
// back the same after writing. The first byte selects the allowed record lengths.

#include <QBuffer>
#include <QString>
#include <vector>

#include "fuzz/fuzz.h"
#include "tools/zavdb/sequential_file.h"

namespace {

/// @return false if the bytes are not a sequential file.
bool readAll(QByteArray bytes, int shortest, int longest, std::vector<QByteArray>& records) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    tools::SequentialReader reader(buffer, shortest, longest);
    try {
        while (reader.next()) {
            require(reader.bytes().size() >= shortest && reader.bytes().size() <= longest &&
                    reader.offset() < bytes.size());
            records.push_back(reader.bytes());
            require(reader.number() == static_cast<qint64>(records.size()));
        }
    } catch (const tools::SequentialFileError& error) {
        require(!QByteArray(error.what()).contains('\n'));
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
    const QByteArray bytes = inputBytes(data + 1, size - 1);
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
    require(readAll(written, shortest, longest, again) && again == records);
    return 0;
}
