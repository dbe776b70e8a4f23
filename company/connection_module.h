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

/// One SQL connection to a company's database; record tables of the company use the same one.
class UniConnection {
  public:
    /// Name of the company; empty before the first attempt.
    const QString& dataSource() const { return m_dataSource; }
    const QString& provider() const { return m_provider; }
    bool connected() const { return m_database != nullptr; }
    /// The open database. @throws data::DataError(NoConnection) with what the attempts met.
    data::Database& database() const;

  private:
    friend class TZavDbConnectionModule;
    QString m_dataSource;
    QString m_provider;
    std::unique_ptr<data::Database> m_database;
    std::unique_ptr<data::DataError> m_failure;
};

/// Keeps the SQL connections to the company databases: the main one and one per further name, from
/// first use to the end of the process.
class TZavDbConnectionModule {
  public:
    /// Opens the database of a data source name; throws data::DataError when it cannot.
    using Opener = std::function<std::unique_ptr<data::Database>(const QString& dataSource)>;
    /// Shows a short-lived notice for the time of an attempt; the returned object takes it away.
    using Notice = std::function<std::shared_ptr<void>(const QString& text)>;

    static constexpr int kConnectAttempts = 4;

    /// The command line's "/unimonitor", "/uniquerydebug" and, at a place after the first,
    /// "/UNIDACDEBUG" switch the process's traces to the debugger output on.
    explicit TZavDbConnectionModule(Opener opener = openByAlias, Notice notice = nullptr);
    ~TZavDbConnectionModule();

    /// The process's module, created (and its main connection connected to the current company) on
    /// first use.
    static TZavDbConnectionModule& instance();
    /// Sets what instance() shows while it connects; before the first use.
    static void setNotice(Notice notice);
    /// Frees the process's module; for tests and the end of the program.
    static void shutDown();

    /// With `connect`, initialises the main connection for the name: shows the notice, tries
    /// kConnectAttempts times. A failure leaves the connection closed and is told by database().
    /// `serverCheck` is for engines with a server to look for; none of the present ones has it.
    void Yhdista(const QString& dataSource, bool connect, bool serverCheck);
    UniConnection& UniDacConnection() { return *m_main; }

    /// The connection of a name: the main one for an empty name, else the first of that data source
    /// name (case of a to z ignored), else a new one.
    UniConnection& connection(const QString& dataSource);
    UniConnection& LuoYhteys(const QString& dataSource);

    /// A new query bound to the connection of that name, traced when asked for. The module's
    /// switches trace every query of the process.
    std::unique_ptr<data::TUniQuery> LuoUniQuery(const QString& dataSource, bool debug = false);

    /// A new script bound in the same way.
    std::unique_ptr<data::TUniScript> LuoUniScript(const QString& dataSource);

    /// The engine is chosen by the alias: an embedded company where its folder holds a database
    /// file, else (also without a folder) a company of the shops' engine.
    /// @throws data::DataError(NoConnection) when there is no such company or folder, or its engine
    /// cannot be reached; what embedded files throw.
    static std::unique_ptr<data::Database> openByAlias(const QString& dataSource);

  private:
    void AlustaUnidacConnection(UniConnection& connection, const QString& dataSource);

    Opener m_opener;
    Notice m_notice;
    std::vector<std::unique_ptr<UniConnection>> m_owned;
    UniConnection* m_main;
    std::vector<UniConnection*> m_list;
    bool m_monitor;  // "/unimonitor": connections and the calls of their engine are traced too
};

/// The current company's database, connected on first use.
data::Database& companyDatabase();

/// Prepares one record table for use: owner name (when the company's alias has one and the name
/// holds no ";OWNER:" yet), database, open (closed first if it was open). Without a database given:
/// the current company's.
void openCompanyTable(data::TtbTable& table, const QString& tableName);
void openCompanyTable(data::TtbTable& table, const QString& tableName, data::Database& database);

}  // namespace company
