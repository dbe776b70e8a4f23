#pragma once

#include "data/dictionary/field_cache_item.h"
#include "vatchange/changes/change_list.h"

namespace vatchange {

/// A table's name in windows: "Asiakashinnastot"; any other table's own name.
QString tableTitle(const QString& table);
/// A field as the list knows it.
ChangedField describeField(const QString& table, const data::TFieldCacheItem& item);

}  // namespace vatchange
