#include "data/record/field_check.h"

#include <algorithm>
#include <cmath>

#include "data/record/record_codec.h"

namespace data {

namespace {

QString amountProblem(const TFieldCacheItem& field, const uchar* record) {
    const double amount = std::abs(readFloat(field, record));
    if (amount <= kLargestAmount && (amount == 0 || amount >= kSmallestAmount))
        return {};
    return QStringLiteral("no amount: %1").arg(shortestText(readFloat(field, record)));
}

}  // namespace

QString numberProblem(const TFieldCacheItem& field, const uchar* record) {
    const bool isNumber = field.kind() == Kind::Float || field.storage == Storage::DateDouble;
    if (!isNumber)
        return {};
    const double value = readFloat(field, record);
    if (std::isnan(value))
        return QStringLiteral("not a number (NaN)");
    return std::isinf(value) ? QStringLiteral("infinite") : QString();
}

QString fieldProblem(const TFieldCacheItem& field, const uchar* record) {
    const uchar* at = record + field.offset;
    const uchar* end = at + field.storedLength;
    const bool isEmpty = std::all_of(at, end, [](uchar byte) { return byte == 0; });
    if (const QString problem = numberProblem(field, record); !problem.isEmpty())
        return problem;
    switch (field.storage) {
        case Storage::LString:
            return *at > field.storedLength - 1 ? QStringLiteral("text length beyond the field")
                                                : QString();
        case Storage::ZString:
        case Storage::Note:
            return std::find(at, end, 0) == end ? QStringLiteral("text without its end")
                                                : QString();
        case Storage::LVar:
            return at[0] + 256 * at[1] > field.storedLength - 2
                       ? QStringLiteral("length beyond the field")
                       : QString();
        case Storage::Date:
            return !readDate(field, record).isValid() && !isEmpty
                       ? QStringLiteral("no calendar date")
                       : QString();
        case Storage::Time:
            return !readTime(field, record).isValid() ? QStringLiteral("no time of day")
                                                      : QString();
        case Storage::Float:
        case Storage::Real48:
            return field.kind() == Kind::Float ? amountProblem(field, record) : QString();
        default:
            return {};
    }
}

}  // namespace data
