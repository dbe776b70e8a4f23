#pragma once

#include <QString>
#include <functional>

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"

namespace tools {

/// Builds a new company and registers it: all of it or nothing.
///
/// Builds the database in a hidden folder inside `folder` and moves it into place when complete, so
/// that neither a failure nor a kill leaves half a company. `fill` (may be empty) adds the data.
/// Creates a missing folder and removes it again on failure.
/// @throws data::DataError if the name is invalid or in use; CommandError if the folder holds a
///         company.
void buildCompany(const QString& name, const QString& folder,
                  const std::vector<data::TableSource>& tables,
                  const std::function<void(data::Database&)>& fill);

/// @throws CommandError if the folder holds a company or is not a folder.
void requireFreeFolder(const QString& folder);

}  // namespace tools
