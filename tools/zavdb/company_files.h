#pragma once

#include <QString>
#include <QStringList>

namespace tools {

/// Copies what a company's folder holds beside its data, into another folder: the saved definitions
/// (MAARITYS) and the INI files. Nothing is overwritten; a file that cannot be read, and one that
/// is there already with other bytes, becomes a line of `notes`.
/// @throws CommandError when the target cannot be written.
void copyCompanyFiles(const QString& source, const QString& target, QStringList& notes);

}  // namespace tools
