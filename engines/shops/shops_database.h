#pragma once

#include <QString>
#include <chrono>
#include <memory>

#include "data/engine/engine.h"
#include "engines/data_names.h"

namespace engines::shops {

/// Connection settings of a company of the shops' engine. Its name is the engine's database name
/// and, by default, the ODBC data source.
struct ShopsDatabaseSettings {
    QString name;
    QString folder;         ///< data folder (empty: the working folder) with the run's lock file
    QString ownerName;      ///< owner name of the record files; usually empty
    QString server;         ///< host that the shops' engine runs on; empty: this machine
    QString clientLibrary;  ///< client library of the shops' engine; empty: its default names
    QString dataSource;     ///< ODBC data source; empty: `name`
    QString userName;       ///< for the data source and the database; usually empty
    QString password;
    QString odbcAttributes;  ///< added to the ODBC connection string
    /// Time limits of a connection attempt and of a single call.
    std::chrono::milliseconds connectLimit{15000};
    std::chrono::milliseconds statementLimit{60000};
};

/// Opens a company of the shops' engine: its records over the client library, its SQL over ODBC.
/// @throws DataError(NoConnection) if the client library, the database or the data source is not
/// reachable, with the names tried and the setting to change, in Finnish.
std::unique_ptr<Database> openShopsDatabase(const ShopsDatabaseSettings& settings);

/// Copies the run journal of a company, if it has one, into another folder and brings the copy up
/// to date with what an interrupted statement has changed; the company's own stays as it is.
/// @return path of the copy; empty if there is none. @throws DataError.
QString copyShopsJournal(const QString& companyFolder, Database& company, const QString& folder);

/// Whether a process is in a run of the company (Database::beginRun). Creates no lock file.
bool runGoesOnInShops(const QString& companyFolder);

}  // namespace engines::shops
