#pragma once

#include <QString>
#include <QStringList>

namespace company {

/// @throws data::DataError(BadValue) if a company cannot have this name, or one has it.
void requireFreeName(const QString& name);
/// The absolute path of a folder, without "." and "..".
/// @throws data::DataError(BadValue) if it is empty or no valid text.
QString absoluteFolder(const QString& folder);
/// Registers a company in an absolute folder, without looking into it.
void registerCompany(const QString& name, const QString& folder);
/// Registers the company whose embedded database is in the folder. Opens it, so that a database
/// that cannot be used is not registered.
/// @throws data::DataError if the name or the folder is refused.
void addCompany(const QString& name, const QString& folder);

/// The registered companies: those that this user used last come first, the others follow in
/// Finnish order. @throws data::DataError like aliasNames()
QStringList companiesByUse();
/// Remembers in the user's settings that a company is used now.
void rememberUse(const QString& name);

}  // namespace company
