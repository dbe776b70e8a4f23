// Any bytes as the shops' engine's description of a file: an error, or keys that lie in the record.

#include <cstdlib>

#include "data/error.h"
#include "engines/shops/file_stat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > static_cast<size_t>(engines::shops::kMaxStatLength))
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    try {
        const engines::shops::FileStat stat =
            engines::shops::parseFileStat(bytes, QStringLiteral("FUZZ"));
        int number = 0;
        for (const engines::shops::KeyStat& key : stat.keys) {
            if (key.number != number++)
                std::abort();
            for (const engines::shops::SegmentStat& segment : key.segments) {
                if (segment.offset < 0 || segment.length < 1 ||
                    segment.offset + segment.length > stat.recordLength ||
                    (!segment.weights.isEmpty() && segment.weights.size() != 256))
                    std::abort();
            }
        }
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::Damaged)
            std::abort();
    }
    return 0;
}
