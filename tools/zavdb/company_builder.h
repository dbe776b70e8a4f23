#pragma once

#include <QString>
#include <functional>

#include "data/dictionary/dictionary_source.h"
#include "data/engine/engine.h"

namespace tools {

/// Builds a new company and registers it: all of it or nothing.
///
/// The database is made in a folder of its own inside `folder` and moved to its place when it is
/// whole, so that neither a failure nor a kill leaves half a company there. `fill` (may be empty)
/// puts the data in. The folder is made when it is missing, and taken away again on failure.
/// @throws CommandError when the name is none or taken, or the folder holds a company already;
///         data::DataError.
void buildCompany(const QString& name, const QString& folder,
                  const std::vector<data::TableSource>& tables,
                  const std::function<void(data::Database&)>& fill);

/// @throws CommandError when the name cannot be a company's, or is taken.
void requireFreeName(const QString& name);
/// The folder of a command, in full. @throws CommandError when it is empty.
QString absoluteFolder(const QString& folder);
/// @throws CommandError when the folder holds a company, or is no folder.
void requireFreeFolder(const QString& folder);
/// Puts the company of an absolute folder on the list.
void registerCompany(const QString& name, const QString& folder);

}  // namespace tools
