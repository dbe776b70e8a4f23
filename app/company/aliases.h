#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace company {

/// What an alias says of a company.
struct Alias {
    QString name;
    QString physicalName;   ///< data folder
    QString localFilePath;  ///< local folder, may be empty
};

/// The registered companies ("Aliases\NAME" with "PhysicalName" and "LocalFilePath"): in the
/// registry on Windows (read from the machine's part when the user's has none), in a settings file
/// under $XDG_CONFIG_HOME elsewhere. Read afresh at every call, so other programs' changes are
/// seen.
/// @throws data::DataError(Io, Damaged) naming the settings file when it cannot be read or written.
QStringList aliasNames();                             ///< sorted for Finnish eyes
std::optional<Alias> findAlias(const QString& name);  ///< case of a to z ignored
void storeAlias(const Alias& alias);
bool removeAlias(const QString& name);

/// Why a name cannot be a company's name (empty, control characters, / or \ ...); empty when it
/// can.
QString aliasNameProblem(const QString& name);

/// The registry flag PaikallinenMaaritys of a form: its saved definitions live in the local folder.
bool localDefinitions(const QString& formName);

}  // namespace company
