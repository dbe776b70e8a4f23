#pragma once

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"

namespace data {

/// The description of an open table, for a table of another engine with the same records: every
/// byte belongs to a field, and key numbers have no gaps.
TableSource tableSourceOf(const TableFile& table);

}  // namespace data
