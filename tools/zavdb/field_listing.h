#pragma once

#include <QString>
#include <vector>

#include "data/engine/engine.h"

namespace tools {

/// The fields of an open table as its dictionaries describe them: the compiled one's items where it
/// agrees with the stored layout (it keeps every mask), else the catalogue's.
std::vector<data::TFieldCacheItem> describedFields(const data::TableFile& records);

/// A readable table of the fields, then one line for each key.
QString fieldListing(const data::TableFile& records);

}  // namespace tools
