#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace company {

/// A registered company.
struct Alias {
    QString name;
    QString physicalName;   ///< data folder
    QString localFilePath;  ///< local folder, may be empty
    QString ownerName;      ///< owner of the record files, if the engine needs one; usually empty
    // For companies of the shops' engine; usually empty:
    QString server = {};      ///< host of the shops' engine; empty: this machine
    QString dataSource = {};  ///< ODBC data source; empty: the company's name
    QString userName = {};    ///< for the data source and the database
    QString password = {};
    QString odbcAttributes = {};  ///< added to the ODBC connection string: "KEY=VALUE;KEY=VALUE"
};

/// The registered companies: groups "Aliases\NAME" with "PhysicalName", "LocalFilePath" and, if
/// set, "OwnerName", "Server", "DataSource", "UserName", "Password", "OdbcAttributes". Windows: the
/// registry (user's part, then the machine's, 64-bit view first); elsewhere "aliases.ini" in the
/// user's settings folder. Every call reads the store again and so sees other programs' changes.
/// Names compare without regard to the case of a to z.
/// @throws data::DataError(Io, Damaged) naming the settings file.
QStringList aliasNames();  ///< in Finnish order
std::optional<Alias> findAlias(const QString& name);
/// Registers a company, replacing one of the same name.
/// @throws data::DataError(BadValue) if aliasNameProblem() refuses the name.
void storeAlias(const Alias& alias);
/// @return false if there is no such company.
bool removeAlias(const QString& name);

/// Why a company cannot have this name, in English and (aliasNameProblemFinnish) in Finnish; empty
/// if it can. Invalid: empty, blanks at either end, over 80 characters, control characters, "/" or
/// "\", "." or "..", a leading "-" or "/" (read as a switch on the command line).
QString aliasNameProblem(const QString& name);
QString aliasNameProblemFinnish(const QString& name);

/// A setting of the shops' engine for all companies, in the group "Engine" of the same store:
/// "ClientLibrary", "ConnectSeconds", "StatementSeconds". Empty if not set.
QString engineSetting(const QString& key);

/// The flag PaikallinenMaaritys in the group "Lomakkeet\FORM" of the same store: the form's saved
/// definitions are kept in the company's local folder.
bool localDefinitions(const QString& formName);

}  // namespace company
