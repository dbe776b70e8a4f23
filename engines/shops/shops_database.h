#pragma once

#include <QString>
#include <chrono>
#include <memory>

#include "data/engine/engine.h"
#include "engines/data_names.h"

namespace engines::shops {

/// Where a company of the shops' engine is found. Its name is both the engine's database
/// name and the ODBC data source, unless the latter is given.
struct ShopsDatabaseSettings {
    QString name;
    QString folder;         ///< data folder (empty: the working folder); holds the run's lock
    QString ownerName;      ///< owner name of the record files; mostly empty
    QString server;         ///< host that the shops' engine runs on; empty: this machine
    QString clientLibrary;  ///< the shops' engine's client library; empty: its usual names
    QString dataSource;     ///< ODBC data source; empty: `name`
    QString userName;       ///< of the data source and the database; mostly empty
    QString password;
    QString odbcAttributes;  ///< more of the ODBC connection string
    /// An attempt to connect, and a single call, end in an error after this time.
    std::chrono::milliseconds connectLimit{15000};
    std::chrono::milliseconds statementLimit{60000};
};

/// Opens a company of the shops' engine: its records over the client library, its SQL over ODBC.
/// @throws DataError(NoConnection) when the client library, the database or the data source cannot
/// be reached, saying in Finnish what was looked for and which setting names another.
std::unique_ptr<Database> openShopsDatabase(const ShopsDatabaseSettings& settings);

}  // namespace engines::shops
