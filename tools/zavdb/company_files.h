#pragma once

#include <QString>
#include <QStringList>

namespace tools {

/// Copies the saved definitions (MAARITYS) and INI files of a company's folder. Overwrites nothing;
/// an unreadable file, or an existing one with other contents, becomes a line of `notes`.
/// @throws CommandError if the target cannot be written.
void copyCompanyFiles(const QString& source, const QString& target, QStringList& notes);

}  // namespace tools
