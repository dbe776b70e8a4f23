#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "data/engine/engine.h"
#include "data/sql/uni_query.h"
#include "data/table/tb_table.h"

namespace company {

/// An SQL connection to a company's database. The company's record tables share it.
class UniConnection {
  public:
    /// Name of the company; empty before the first attempt.
    const QString& dataSource() const { return m_dataSource; }
    bool connected() const { return m_database != nullptr; }
    /// The open database.
    /// @throws data::DataError(NoConnection): the last attempt's error.
    data::Database& database() const;

  private:
    friend class TZavDbConnectionModule;
    QString m_dataSource;
    std::unique_ptr<data::Database> m_database;
    std::unique_ptr<data::DataError> m_failure;
};

/// Owns the SQL connections: the main one and one for each further name, each kept open to the end
/// of the process.
class TZavDbConnectionModule {
  public:
    /// Opens the database of a data source name, or throws data::DataError.
    using Opener = std::function<std::unique_ptr<data::Database>(const QString& dataSource)>;
    /// Shows a notice during a connection attempt; it disappears with the returned object.
    using Notice = std::function<std::shared_ptr<void>(const QString& text)>;

    static constexpr int kConnectAttempts = 4;

    /// "/unimonitor", "/uniquerydebug" and, if not the first parameter, "/UNIDACDEBUG" switch on
    /// tracing to the debugger output for the whole process.
    explicit TZavDbConnectionModule(Opener opener = openByAlias, Notice notice = nullptr);
    ~TZavDbConnectionModule();

    /// The process's module. The first call creates it and connects to the current company.
    static TZavDbConnectionModule& instance();
    /// Sets the notice for instance(). Call before its first use.
    static void setNotice(Notice notice);
    /// Sets how instance() opens databases; default openByAlias. Call before its first use.
    static void setOpener(Opener opener);
    /// Destroys the process's module. For tests and program exit.
    static void shutDown();

    /// If `connect`, opens the main connection: shows the notice and tries kConnectAttempts times.
    /// After a failure the connection stays closed and database() throws the error. `serverCheck`
    /// is ignored: no engine has a server to look for.
    void Yhdista(const QString& dataSource, bool connect, bool serverCheck);
    UniConnection& UniDacConnection() { return *m_main; }

    /// The connection of a data source name (case of a to z ignored), created if there is none. The
    /// empty name means the main connection.
    UniConnection& connection(const QString& dataSource);
    UniConnection& LuoYhteys(const QString& dataSource);

    /// A new query on the connection of that name. `debug` traces this query; the module's switches
    /// trace all.
    std::unique_ptr<data::TUniQuery> LuoUniQuery(const QString& dataSource, bool debug = false);

    /// Opens the embedded engine if the alias's folder holds its database file, else (also without
    /// a folder) the shops' engine.
    /// @throws data::DataError(NoConnection) if the company, its folder or its engine is not found;
    /// errors of the embedded database's files.
    static std::unique_ptr<data::Database> openByAlias(const QString& dataSource);

  private:
    void AlustaUnidacConnection(UniConnection& connection, const QString& dataSource);

    Opener m_opener;
    Notice m_notice;
    std::vector<std::unique_ptr<UniConnection>> m_owned;
    UniConnection* m_main;
    std::vector<UniConnection*> m_list;
    bool m_monitor;  // "/unimonitor": also traces connections and engine calls
};

/// The current company's database. The first use connects.
data::Database& companyDatabase();

/// Version of the SQLite library of the embedded engine, for the program's about box.
QString databaseLibraryVersion();

/// (Re)opens a record table on the database (default: the current company's). Adds the alias's
/// owner name unless the table name already has ";OWNER:".
void openCompanyTable(data::TtbTable& table, const QString& tableName);
void openCompanyTable(data::TtbTable& table, const QString& tableName, data::Database& database);

}  // namespace company
