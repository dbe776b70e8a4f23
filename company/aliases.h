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
    QString ownerName;      ///< owner of the record files where the engine wants one, mostly empty
    // Of a company of the shops' engine, all mostly empty:
    QString server = {};      ///< host of the shops' engine; empty: this machine
    QString dataSource = {};  ///< ODBC data source; empty: the company's name
    QString userName = {};    ///< of the data source and the database
    QString password = {};
    QString odbcAttributes = {};  ///< more of the ODBC connection string: "KEY=VALUE;KEY=VALUE"
};

/// The registered companies ("Aliases\NAME" with "PhysicalName", "LocalFilePath" and, where they
/// are needed, "OwnerName", "Server", "DataSource", "UserName", "Password", "OdbcAttributes"): in
/// the registry on Windows (the user's part, then the machine's, its 64-bit view first), in the
/// settings file "aliases.ini" of the user's settings folder elsewhere. Read afresh at every call,
/// so other programs' changes are seen. Names compare without regard to the case of a to z.
/// @throws data::DataError(Io, Damaged) naming the settings file when it cannot be read or written.
QStringList aliasNames();  ///< sorted for Finnish eyes
std::optional<Alias> findAlias(const QString& name);
/// Registers a company; one of the same name is replaced.
/// @throws data::DataError(BadValue) for a name that aliasNameProblem refuses.
void storeAlias(const Alias& alias);
/// @return false when there is no such company.
bool removeAlias(const QString& name);

/// Why a name cannot be a company's name, in English (aliasNameProblem) and in Finnish
/// (aliasNameProblemFinnish); empty when it can. Refused: an empty name, blanks at an end, more
/// than 80 characters, control characters, "/" and "\", "." and "..", a leading "-" or "/" (the
/// command line would take it for a switch).
QString aliasNameProblem(const QString& name);
QString aliasNameProblemFinnish(const QString& name);

/// A setting of the shops' engine that holds for all companies, kept under "Engine" beside the
/// aliases: "ClientLibrary", "ConnectSeconds", "StatementSeconds". Empty when it is not set.
QString engineSetting(const QString& key);

/// The flag PaikallinenMaaritys of a form, kept under "Lomakkeet\FORM" beside the aliases: its
/// saved definitions live in the company's local folder.
bool localDefinitions(const QString& formName);

}  // namespace company
