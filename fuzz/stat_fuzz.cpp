// Any bytes as the shops' engine's description of a file: an error, or keys inside the record.

#include "data/error.h"
#include "engines/shops/file_stat.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > static_cast<size_t>(engines::shops::kMaxStatLength))
        return 0;
    const QByteArray bytes = inputBytes(data, size);
    try {
        const engines::shops::FileStat stat =
            engines::shops::parseFileStat(bytes, QStringLiteral("FUZZ"));
        int number = 0;
        for (const engines::shops::KeyStat& key : stat.keys) {
            require(key.number == number++);
            for (const engines::shops::SegmentStat& segment : key.segments) {
                require(segment.offset >= 0 && segment.length >= 1 &&
                        segment.offset + segment.length <= stat.recordLength &&
                        (segment.weights.isEmpty() || segment.weights.size() == 256));
            }
        }
    } catch (const data::DataError& error) {
        require(error.kind() == data::ErrorKind::Damaged);
    }
    return 0;
}
