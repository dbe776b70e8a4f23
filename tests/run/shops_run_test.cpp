#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFileInfo>

#include "engines/embedded/embedded_database.h"
#include "engines/shops/shops_database.h"
#include "tests/run/run_company.h"
#include "tests/support/fake_client/fake_company.h"

// A run on a company of the shops' engine: records over the call interface, SQL over ODBC, two
// sessions on the same records.

namespace {

using namespace data;

const QString kName = QStringLiteral("Kauppa Åke");

class ShopsRun : public ::testing::Test {
  protected:
    ShopsRun() {
        m_company.execAll({"insert into TUOTE (NUMERO, HINTA, LVV) values ('A1', 10, 3)",
                           "insert into TUOTE (NUMERO, HINTA, LVV) values ('A2', 20, 3)"});
        QFile sources(m_folder.filePath(QStringLiteral("odbc.ini")));
        if (!sources.open(QIODevice::WriteOnly))
            throw std::runtime_error("odbc.ini cannot be written");
        sources.write(QStringLiteral("[shop]\nDriver=%1\nDatabase=%2/%3\nLoadExt=%4/zavsql.so\n")
                          .arg(QStringLiteral(TAKSAVAIHE_SQLITE_DRIVER), m_company.folder(),
                               engines::kEmbeddedFileName, QCoreApplication::applicationDirPath())
                          .toUtf8());
        qputenv("ODBCINI", sources.fileName().toLocal8Bit());
        m_databases.add(kName, m_company.folder());
        m_settings.name = kName;
        m_settings.folder = m_folder.path();
        m_settings.clientLibrary = test::FakeDatabases::library();
        m_settings.dataSource = QStringLiteral("shop");
    }
    ~ShopsRun() override { qunsetenv("ODBCINI"); }

    double price(const char* number) {
        return m_company.number(QStringLiteral("select HINTA from TUOTE where NUMERO = '%1'")
                                    .arg(QLatin1String(number)));
    }

    test::RunCompany m_company;
    QTemporaryDir m_folder;
    test::FakeDatabases m_databases;
    engines::shops::ShopsDatabaseSettings m_settings;
};

TEST_F(ShopsRun, UpdatesThroughItsOwnLocksOnly) {
    const auto shop = engines::shops::openShopsDatabase(m_settings);
    EXPECT_FALSE(shop->statementsPassRecordLocks());
    const auto others = m_company.otherProgram();
    const auto products = others->openTable(QStringLiteral("TUOTE"));
    const auto held = products->seek(0, SeekOp::Equal, {QStringLiteral("A2")}, 1);
    ASSERT_TRUE(products->lock(held.at(0).id, std::chrono::milliseconds(0)));

    const vatchange::RunResult result =
        vatchange::runChange(*shop, test::plainDefinition(), m_company.ports);
    EXPECT_EQ(result.products, 1);
    EXPECT_EQ(result.skippedProducts, 1);
    EXPECT_TRUE(m_company.ports.hasLine(
        QStringLiteral("Virhe tuotteen päivityksessä: A2 tuotetta ei voi muokata")));
    EXPECT_EQ(price("A1"), 10.12);
    EXPECT_EQ(price("A2"), 20);
}

TEST_F(ShopsRun, SurvivesLocksLostDuringTheRun) {
    test::FakeDatabases others;  // replaces the other list during its lifetime
    others.add(QStringLiteral("taker"), m_company.folder(), QStringLiteral("taker"));
    others.add(QStringLiteral("stuck"), m_company.folder(), QStringLiteral("stuck"));
    m_settings.name = QStringLiteral("taker");
    {
        // another session locks each record between its read and its update
        const auto shop = engines::shops::openShopsDatabase(m_settings);
        const vatchange::RunResult result =
            vatchange::runChange(*shop, test::plainDefinition(), m_company.ports);
        EXPECT_EQ(result.skippedNumbers, (QStringList{"A1", "A2"}));
        EXPECT_EQ(result.failedSteps, 0);
        EXPECT_EQ(price("A1"), 10);
    }
    m_settings.name = QStringLiteral("stuck");
    const auto shop = engines::shops::openShopsDatabase(m_settings);
    m_company.ports.onStatus = [this](const QString& text) {
        if (text == QStringLiteral("Tuote A1"))  // nothing left to change under the lock
            m_company.exec(QStringLiteral("update TUOTE set LVV=2 where NUMERO='A1'"));
    };
    const vatchange::RunResult result =
        vatchange::runChange(*shop, test::plainDefinition(), m_company.ports);
    EXPECT_EQ(result.failedSteps, 1) << "the products: the session is lost";
    EXPECT_EQ(price("A2"), 20);
}

TEST_F(ShopsRun, OneRunOfACompanyAtATime) {
    const auto first = engines::shops::openShopsDatabase(m_settings);
    const auto second = engines::shops::openShopsDatabase(m_settings);
    ASSERT_TRUE(first->beginRun());
    EXPECT_FALSE(second->beginRun());
    first->endRun();
    EXPECT_TRUE(second->beginRun());
}

TEST_F(ShopsRun, SilentEngineFailsStepsNotTheRun) {
    m_settings.statementLimit = std::chrono::milliseconds(400);
    const auto shop = engines::shops::openShopsDatabase(m_settings);
    vatchange::ChangeDefinition definition = test::plainDefinition();
    definition.salesOrders = true;
    definition.purchaseOrders = true;
    test::FakeDatabases silent;  // replaces the other list
    qputenv("FAKE_CLIENT_DATABASES", m_databases.file().toLocal8Bit());
    silent.add(kName, m_company.folder(), QStringLiteral("silent"));
    m_company.ports.onStatus = [&silent](const QString& text) {
        if (text == QStringLiteral("Tuote A2"))
            qputenv("FAKE_CLIENT_DATABASES", silent.file().toLocal8Bit());
    };
    QElapsedTimer time;
    time.start();
    const vatchange::RunResult result = vatchange::runChange(*shop, definition, m_company.ports);
    EXPECT_LT(time.elapsed(), 4000);
    EXPECT_EQ(result.products, 2);
    EXPECT_EQ(result.failedSteps, 3) << "with the verification";
    EXPECT_EQ(m_company.ports.lines.filter(QStringLiteral("tietuekanta ei vastannut")).size(), 3);
}

}  // namespace
