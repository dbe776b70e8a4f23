#include <gtest/gtest.h>

#include <QDir>
#include <filesystem>

#include "company/run_mark.h"
#include "platform/command_line.h"
#include "tests/support/test_company.h"

using namespace company;
using namespace platform;
using test::str;

namespace {

class ConnectionTest : public ::testing::Test {
  protected:
    ConnectionTest() { setParameters({}); }

    /// Opens the test's company under any name, after a number of failures.
    TZavDbConnectionModule::Opener opener(int failures) {
        return [this, failures](const QString& name) {
            m_asked.append(name);
            if (m_asked.size() <= failures)
                throw data::DataError(data::ErrorKind::NoConnection, name,
                                      str("attempt %1").arg(m_asked.size()));
            return engines::openEmbedded(name, m_company.path());
        };
    }

    TZavDbConnectionModule::Notice notice() {
        return [this](const QString& text) {
            m_notices.append(text);
            ++m_shown;
            return std::shared_ptr<void>(&m_shown,
                                         [](void* shown) { --*static_cast<int*>(shown); });
        };
    }

    test::TestCompany m_company{{}};
    QStringList m_asked;
    QStringList m_notices;
    int m_shown = 0;
};

TEST_F(ConnectionTest, OneConnectionAName) {
    TZavDbConnectionModule module(opener(0), notice());
    EXPECT_FALSE(module.UniDacConnection().connected());
    module.Yhdista(str("eka"), false, false);
    EXPECT_TRUE(m_asked.isEmpty());
    module.Yhdista(str("eka"), true, false);
    EXPECT_EQ(&module.connection({}), &module.UniDacConnection());
    EXPECT_EQ(&module.connection(str("EKA")), &module.UniDacConnection());
    UniConnection& second = module.connection(str("toka"));
    EXPECT_NE(&second, &module.UniDacConnection());
    EXPECT_EQ(&module.connection(str("Toka")), &second);
    EXPECT_EQ(m_asked, QStringList({str("eka"), str("toka")}));
    EXPECT_EQ(m_notices,
              QStringList({str("Alustan kantayhteyttä eka"), str("Alustan kantayhteyttä toka")}));
    EXPECT_EQ(m_shown, 0);
}

TEST_F(ConnectionTest, FourAttemptsThenTheNextOperationFails) {
    for (const int failures : {3, 4}) {
        m_asked.clear();
        TZavDbConnectionModule module(opener(failures), notice());
        module.Yhdista(str("eka"), true, false);
        EXPECT_EQ(module.UniDacConnection().connected(), failures == 3);
        EXPECT_EQ(m_asked.size(), 4);
        EXPECT_EQ(m_shown, 0);
        if (failures == 3)
            continue;
        const data::DataError error = test::thrownBy([&] { module.LuoUniQuery(str("Eka")); });
        EXPECT_EQ(error.kind(), data::ErrorKind::NoConnection);
        EXPECT_EQ(error.table(), str("eka"));
        EXPECT_EQ(error.detail(), str("attempt 4"));
        EXPECT_EQ(m_asked.size(), 4);
    }
}

TEST_F(ConnectionTest, TheAliasChoosesTheEngineOrSaysWhyNot) {
    EXPECT_EQ(TZavDbConnectionModule::openByAlias(currentCompany().name)->name(),
              currentCompany().name);
    const QTemporaryDir empty;
    storeAlias({str("tyhjä"), empty.path(), {}, {}});
    storeAlias({str("poissa"), empty.filePath(str("poissa")), {}, {}});
    storeAlias({str("kansioton"), {}, {}, {}});
    storeAlias({str("palvelin"), empty.path(), {}, {}, str("kone")});
    const QTemporaryDir broken;
    const auto linkTo = [](const char* target, const QString& name) {
        std::filesystem::create_symlink(target, name.toStdString());
    };
    linkTo("poissa.zdb", broken.filePath(engines::kEmbeddedFileName));
    storeAlias({str("linkki"), broken.path(), {}, {}});
    linkTo("kehä", broken.filePath(str("kehä")));
    storeAlias({str("kehä"), broken.filePath(str("kehä")), {}, {}});
    const QString workingFolder = QDir::currentPath();
    ASSERT_TRUE(
        QDir::setCurrent(m_company.path()));  // its database is not a registered company here
    const char* const cases[][3] = {
        {"tyhjä", "holds no database YRITYS.ZDB", "\" ei ole tietokantaa YRITYS.ZDB, eikä"},
        {"linkki", "no such file", "YRITYS.ZDB: tiedostoa ei ole"},
        {"kehä", "the folder cannot be read", "kehä: kansiota ei voi lukea"},
        {"palvelin", "client library", "asiakaskirjastoa"},
        {"poissa", "does not exist", "poissa\" ei ole"},
        {"kansioton", "client library", ""},
        {"tuntematon", "registered", "sen nimistä yritystä ei ole luettelossa"}};
    for (const auto& [name, reason, finnish] : cases) {
        const data::DataError error =
            test::thrownBy([alias = str(name)] { TZavDbConnectionModule::openByAlias(alias); });
        EXPECT_EQ(error.kind(), data::ErrorKind::NoConnection) << name;
        EXPECT_TRUE(error.detail().contains(str(reason))) << error.what();
        EXPECT_TRUE(error.finnish().contains(str(finnish))) << error.finnish().toStdString();
        removeAlias(str(name));
    }
    QDir::setCurrent(workingFolder);
}

TEST_F(ConnectionTest, FileErrorsNameTheRemedyInFinnish) {
    const QString file = m_company.file(engines::kEmbeddedFileName);
    const auto message = [&] {
        return test::thrownBy([&] { TZavDbConnectionModule::openByAlias(currentCompany().name); })
            .finnish();
    };
    {
        QFile database(file);
        ASSERT_TRUE(database.open(QIODevice::ReadWrite) && database.seek(60));
        ASSERT_EQ(database.write(QByteArray::fromHex("00000063")), 4);  // user_version 99
    }
    EXPECT_EQ(message(), str("Tietokanta hylkäsi toiminnon: ") + file +
                             str(": tietokannan muoto 99 on uudempi kuin tämän ohjelman muoto 2. "
                                 "Ota käyttöön ohjelman uudempi versio."));
    test::writeFile(file, QByteArray("jotain muuta\n").repeated(1000));
    EXPECT_EQ(message(),
              str("Tiedot ovat vioittuneet: ") + file +
                  str(": tiedosto ei ole tietokanta (virhekoodi 26). Palauta varmuuskopio "
                      "tai ota yhteys tukeen."));
}

TEST_F(ConnectionTest, SwitchesTraceTheQueriesOfTheProgram) {
    const std::tuple<const char*, bool, bool> cases[] = {
        {"KOE /E", false, false},
        {"/unimonitor", true, true},
        {"KOE -UniMonitor /uniquerydebug", true, true},
        {"/uniquerydebug KOE", false, true},
        {"KOE /UNIQUERYDEBUG", false, true},
        {"/UNIDACDEBUG KOE", false, false},
        {"KOE /unidacdebug", false, true}};
    for (const auto& [parameters, connection, statements] : cases) {
        setParameters(str(parameters).split(u' '));
        const QStringList traced = test::tracedBy([this] {
            TZavDbConnectionModule module(opener(0), notice());
            module.Yhdista(str("KOE"), true, false);
            const auto query = module.LuoUniQuery({});
            query->sql().add(str("select nimi from tryhma where nro = :nro"));
            query->paramByName(str("nro")).setInteger(7);
            query->open();
        });
        EXPECT_EQ(traced.contains(str("connect KOE attempt 1 connected")), connection)
            << parameters;
        for (const char* line : {"select nimi from tryhma where nro = :nro", "  :nro = 7"})
            EXPECT_EQ(traced.contains(str(line)), statements) << parameters << line;
    }
    setParameters({});
    const TZavDbConnectionModule untraced(opener(0), notice());
}

TEST_F(ConnectionTest, RecordTablesOpenWithTheOwnersName) {
    data::TtbTable table;
    openCompanyTable(table, str("ALVKANTA"));
    EXPECT_EQ(table.tableName(), str("ALVKANTA"));
    EXPECT_EQ(table.databaseName(), str("ddf"));

    storeAlias({currentCompany().name, m_company.path(), {}, str("zav")});
    takeIntoUse(currentCompany().name);
    openCompanyTable(table, str("ALVKANTA"));
    EXPECT_EQ(table.tableName(), str("ALVKANTA;OWNER:zav"));
    openCompanyTable(table, str("TUOTE;owner:muu"));
    EXPECT_EQ(table.tableName(), str("TUOTE;owner:muu"));
    EXPECT_TRUE(table.isOpen());
}

TEST_F(ConnectionTest, RunMark) {
    data::Database& database = companyDatabase();
    const auto marks = [&] {
        return m_company.text(
            str("select count(*) from ini where sektio='TAKSAVAIHE' and "
                "ininimi='ZAV.INI' and avain='20240901'"));
    };
    m_company.exec(str("insert into ini values ('ZAV.INI', 'TAKSAVAIHE', '20230101', 'vanha')"));
    EXPECT_FALSE(ExecutionMarkExists(database));
    EXPECT_EQ(DeleteExecutionMark(database), 0);
    for (const QDateTime& when : {QDateTime(QDate(2024, 9, 1), QTime(7, 5, 9)),
                                  QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59))}) {
        writeExecutionMark(database, when);
        EXPECT_TRUE(ExecutionMarkExists(database));
        EXPECT_EQ(marks(), str("1"));
        EXPECT_EQ(m_company.text(str("select data from ini where avain='20240901'")),
                  when.toString(str("yyyy-MM-dd HH:mm:ss")));
    }
    m_company.exec(str("update ini set data='' where avain='20240901'"));
    EXPECT_FALSE(ExecutionMarkExists(database));
    m_company.exec(str("insert into ini values ('ZAV.INI', 'TAKSAVAIHE', '20240901', 'x')"));
    EXPECT_EQ(DeleteExecutionMark(database), 2);
    EXPECT_EQ(m_company.text(str("select data from ini")), str("vanha"));
}

}  // namespace
