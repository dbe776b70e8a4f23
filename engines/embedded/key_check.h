#pragma once

#include <QStringList>
#include <functional>

#include "engines/data_names.h"
#include "engines/embedded/stored_table.h"

namespace engines::embedded {

/// Compares a key's index with the records, both ways: every entry has its record with the same
/// value of the key, every record its entry, and no value of a unique key is there twice. An index
/// that is missing or defined in another way is told and not read. `tell` gets one English line for
/// each finding. @throws DataError of the file.
void checkKeyIndex(const StoredTable& table, const KeyDef& key,
                   const std::function<void(const QString&)>& tell);

}  // namespace engines::embedded
