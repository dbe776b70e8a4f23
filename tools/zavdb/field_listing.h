#pragma once

#include <QString>
#include <vector>

#include "data/engine/engine.h"

namespace tools {

/// Returns the fields of an open table: from the compiled dictionary if it matches the stored
/// layout (it has every mask), else from the catalogue.
std::vector<data::TFieldCacheItem> describedFields(const data::TableFile& records);

/// Formats the fields as a table, then one line per key.
QString fieldListing(const data::TableFile& records);

}  // namespace tools
