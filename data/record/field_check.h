#pragma once

#include <QString>

#include "data/dictionary/field_cache_item.h"

namespace data {

/// The largest sum that a field may hold without being told as damaged: up to here a double tells
/// ten-thousandths apart (2^53 / 10^4), the finest step that prices are rounded to. No price,
/// quantity or turnover of a company comes near it; stray bytes do.
inline constexpr double kLargestAmount = 9007199254740992.0 / 10000;
/// The smallest one other than 0. What subtracting amounts leaves behind is above 1e-20.
inline constexpr double kSmallestAmount = 1e-30;

/// Why the bytes of a field are no value of its kind or no possible amount, in English; empty if
/// they are. `record` as in record_codec.h.
QString fieldProblem(const TFieldCacheItem& field, const uchar* record);

/// Why a record with these bytes cannot be taken in: a number that is none ("not a number") or is
/// infinite, with which every further price would be one too. Empty if it can.
QString numberProblem(const TFieldCacheItem& field, const uchar* record);

}  // namespace data
