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
/// @throws CommandError if the name is invalid or in use, or the folder holds a company;
///         data::DataError.
void buildCompany(const QString& name, const QString& folder,
                  const std::vector<data::TableSource>& tables,
                  const std::function<void(data::Database&)>& fill);

/// @throws CommandError if the name is invalid or already in use.
void requireFreeName(const QString& name);
/// Returns the absolute path of a folder. @throws CommandError if it is empty.
QString absoluteFolder(const QString& folder);
/// @throws CommandError if the folder holds a company or is not a folder.
void requireFreeFolder(const QString& folder);
/// Registers the company in an absolute folder.
void registerCompany(const QString& name, const QString& folder);

}  // namespace tools
