#include "company/connection_module.h"

#include <QDebug>
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "company/aliases.h"
#include "company/company.h"
#include "company/shops_settings.h"
#include "engines/embedded/embedded_database.h"
#include "engines/shops/odbc_connection.h"
#include "engines/shops/shops_database.h"
#include "platform/command_line.h"
#include "platform/text_order.h"

namespace company {

namespace {

std::unique_ptr<TZavDbConnectionModule>& module() {
    static std::unique_ptr<TZavDbConnectionModule> instance;
    return instance;
}

TZavDbConnectionModule::Notice& processNotice() {
    static TZavDbConnectionModule::Notice notice;
    return notice;
}

TZavDbConnectionModule::Opener& processOpener() {
    static TZavDbConnectionModule::Opener opener = TZavDbConnectionModule::openByAlias;
    return opener;
}

data::DataError noConnection(const QString& dataSource, const QString& detail,
                             const QString& finnish) {
    return data::DataError(data::ErrorKind::NoConnection, dataSource, detail).inFinnish(finnish);
}

bool namesShopsEngine(const Alias& alias) {
    return !alias.server.isEmpty() || !alias.dataSource.isEmpty() || !alias.ownerName.isEmpty() ||
           !alias.odbcAttributes.isEmpty();
}

data::DataError noDatabase(const Alias& alias, const data::DataError& shopsError) {
    return data::DataError(
               data::ErrorKind::NoConnection, alias.name,
               QStringLiteral("folder \"%1\" holds no database %2, and the shops' engine cannot "
                              "open the company either: %3")
                   .arg(alias.physicalName, engines::kEmbeddedFileName, shopsError.detail()),
               shopsError.nativeCode())
        .inFinnish(QStringLiteral("kansiossa \"%1\" ei ole tietokantaa %2, eikä yritystä voi avata "
                                  "tietokantapalvelimeltakaan")
                       .arg(alias.physicalName, engines::kEmbeddedFileName),
                   QStringLiteral("Tarkista yrityksen kansio tai palauta tietokanta "
                                  "varmuuskopiosta. Palvelimella oleva yritys tarvitsee "
                                  "tietokannan asiakasohjelmiston tähän koneeseen."));
}

}  // namespace

data::Database& UniConnection::database() const {
    if (m_database)
        return *m_database;
    if (!m_failure)
        throw noConnection(m_dataSource, QStringLiteral("the connection has not been opened"),
                           QStringLiteral("yhteyttä ei ole avattu"));
    throw *m_failure;
}

TZavDbConnectionModule::TZavDbConnectionModule(Opener opener, Notice notice)
    : m_opener(std::move(opener)),
      m_notice(std::move(notice)),
      m_monitor(platform::hasSwitch(QStringLiteral("/unimonitor"))) {
    m_owned.push_back(std::make_unique<UniConnection>());
    m_main = m_owned.front().get();
    engines::shops::OdbcConnection::setTracing(m_monitor);
    data::TUniQuery::setDebugOfAll(m_monitor ||
                                   platform::hasSwitch(QStringLiteral("/uniquerydebug")) ||
                                   platform::hasSwitchAfterFirst(QStringLiteral("/UNIDACDEBUG")));
}

TZavDbConnectionModule::~TZavDbConnectionModule() = default;

TZavDbConnectionModule& TZavDbConnectionModule::instance() {
    if (!module()) {
        module() = std::make_unique<TZavDbConnectionModule>(processOpener(), processNotice());
        module()->Yhdista(currentCompany().name, true, false);
    }
    return *module();
}

void TZavDbConnectionModule::setNotice(Notice notice) {
    processNotice() = std::move(notice);
}

void TZavDbConnectionModule::setOpener(Opener opener) {
    processOpener() = std::move(opener);
}

void TZavDbConnectionModule::shutDown() {
    module().reset();
}

void TZavDbConnectionModule::Yhdista(const QString& dataSource, bool connect,
                                     [[maybe_unused]] bool serverCheck) {
    if (connect)
        AlustaUnidacConnection(*m_main, dataSource);
}

UniConnection& TZavDbConnectionModule::connection(const QString& dataSource) {
    if (dataSource.isEmpty())
        return *m_main;
    const auto found =
        std::find_if(m_list.begin(), m_list.end(), [&dataSource](const UniConnection* known) {
            return platform::sameIgnoringAsciiCase(known->dataSource(), dataSource);
        });
    return found != m_list.end() ? **found : LuoYhteys(dataSource);
}

UniConnection& TZavDbConnectionModule::LuoYhteys(const QString& dataSource) {
    m_owned.push_back(std::make_unique<UniConnection>());
    UniConnection& created = *m_owned.back();
    AlustaUnidacConnection(created, dataSource);
    return created;
}

void TZavDbConnectionModule::AlustaUnidacConnection(UniConnection& connection,
                                                    const QString& dataSource) {
    const std::shared_ptr<void> notice =
        m_notice ? m_notice(QStringLiteral("Alustan kantayhteyttä ") + dataSource) : nullptr;
    if (!platform::sameIgnoringAsciiCase(connection.m_dataSource, dataSource))
        connection.m_database.reset();
    connection.m_dataSource = dataSource;

    for (int attempt = 1; attempt <= kConnectAttempts && !connection.connected(); ++attempt) {
        try {
            connection.m_database = m_opener(dataSource);
            connection.m_failure.reset();
        } catch (const data::DataError& error) {
            connection.m_failure = std::make_unique<data::DataError>(error);
        }
        if (m_monitor)
            qDebug().noquote() << "connect" << dataSource << "attempt" << attempt
                               << (connection.connected() ? QStringLiteral("connected")
                                                          : connection.m_failure->english());
    }
    if (std::find(m_list.begin(), m_list.end(), &connection) == m_list.end())
        m_list.push_back(&connection);
}

std::unique_ptr<data::TUniQuery> TZavDbConnectionModule::LuoUniQuery(const QString& dataSource,
                                                                     bool debug) {
    auto query = std::make_unique<data::TUniQuery>(&connection(dataSource).database());
    query->setDebug(debug);
    return query;
}

std::unique_ptr<data::Database> TZavDbConnectionModule::openByAlias(const QString& dataSource) {
    const std::optional<Alias> alias = findAlias(dataSource);
    if (!alias)
        throw noConnection(dataSource, QStringLiteral("no company of this name is registered"),
                           QStringLiteral("sen nimistä yritystä ei ole luettelossa"));
    const QString& folder = alias->physicalName;
    // Without a folder, the shops' engine finds the company by name.
    if (folder.isEmpty())
        return engines::shops::openShopsDatabase(shopsSettings(*alias));
    if (engines::hasEmbeddedDatabase(folder))
        return engines::openEmbedded(alias->name, folder);
    if (!QFileInfo(folder).isDir())
        throw noConnection(dataSource, QStringLiteral("folder \"%1\" does not exist").arg(folder),
                           QStringLiteral("kansiota \"%1\" ei ole").arg(folder));
    try {
        return engines::shops::openShopsDatabase(shopsSettings(*alias));
    } catch (const data::DataError& error) {
        // Nothing but the missing file says that the company belongs to the shops' engine.
        if (error.kind() != data::ErrorKind::NoConnection || namesShopsEngine(*alias))
            throw;
        throw noDatabase(*alias, error);
    }
}

data::Database& companyDatabase() {
    return TZavDbConnectionModule::instance().connection(currentCompany().name).database();
}

QString databaseLibraryVersion() {
    return engines::embeddedLibraryVersion();
}

void openCompanyTable(data::TtbTable& table, const QString& tableName) {
    openCompanyTable(table, tableName, companyDatabase());
}

void openCompanyTable(data::TtbTable& table, const QString& tableName, data::Database& database) {
    const QString& owner = currentCompany().ownerName;
    const bool named = tableName.contains(QStringLiteral(";OWNER:"), Qt::CaseInsensitive);
    if (table.isOpen())
        table.close();
    table.setDatabase(&database);
    table.setDatabaseName(data::kDdfDatabase);
    table.setTableName(owner.isEmpty() || named ? tableName
                                                : tableName + QStringLiteral(";OWNER:") + owner);
    table.open();
}

}  // namespace company
