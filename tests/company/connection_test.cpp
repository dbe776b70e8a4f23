#include <gtest/gtest.h>

#include <QDir>
#include <stdexcept>

#include "app/company/command_line.h"
#include "app/company/connection_module.h"
#include "app/company/run_mark.h"
#include "data/embedded/embedded_database.h"
#include "tests/support/company_folder.h"

using namespace company;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class ConnectionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setParameters({});
        data::createEmbedded(m_company.path(), data::allTableSources());
    }

    /// Opens the test's company under any name, after a number of failures.
    TZavDbConnectionModule::Opener opener(int failures) {
        return [this, failures](const QString& name) {
            m_asked.append(name);
            if (m_asked.size() <= failures)
                throw data::DataError(data::ErrorKind::NoConnection, name,
                                      str("attempt %1").arg(m_asked.size()));
            return data::openEmbedded(name, m_company.path());
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

    test::CompanyFolder m_company;
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
    EXPECT_EQ(second.provider(), str("ODBC"));
    EXPECT_EQ(m_asked, QStringList({str("eka"), str("toka")}));
    EXPECT_EQ(m_notices,
              QStringList({str("Alustan kantayhteyttä eka"), str("Alustan kantayhteyttä toka")}));
    EXPECT_EQ(m_shown, 0);
}

TEST_F(ConnectionTest, FourAttemptsThenTheNextOperationFails) {
    {
        TZavDbConnectionModule module(opener(3), notice());
        module.Yhdista(str("eka"), true, false);
        EXPECT_TRUE(module.UniDacConnection().connected());
        EXPECT_EQ(m_asked.size(), 4);
    }
    m_asked.clear();
    TZavDbConnectionModule module(opener(4), notice());
    module.Yhdista(str("eka"), true, false);
    EXPECT_EQ(m_asked.size(), 4);
    EXPECT_FALSE(module.UniDacConnection().connected());
    EXPECT_EQ(m_shown, 0);
    try {
        module.LuoUniQuery(str("Eka"));
        ADD_FAILURE() << "a query without a connection";
    } catch (const data::DataError& error) {
        EXPECT_EQ(error.kind(), data::ErrorKind::NoConnection);
        EXPECT_EQ(error.table(), str("eka"));
        EXPECT_EQ(error.detail(), str("attempt 4"));
    }
    EXPECT_EQ(m_asked.size(), 4);
}

TEST_F(ConnectionTest, TheAliasChoosesTheEngineOrSaysWhyNot) {
    EXPECT_EQ(TZavDbConnectionModule::openByAlias(currentCompany().name)->name(),
              currentCompany().name);
    const QTemporaryDir empty;
    storeAlias({str("tyhjä"), empty.path(), {}, {}});
    storeAlias({str("poissa"), empty.filePath(str("poissa")), {}, {}});
    storeAlias({str("kansioton"), {}, {}, {}});
    const std::pair<const char*, const char*> cases[] = {{"tyhjä", "client library"},
                                                         {"poissa", "does not exist"},
                                                         {"kansioton", "no data folder"},
                                                         {"tuntematon", "registered"}};
    for (const auto& [name, reason] : cases) {
        try {
            TZavDbConnectionModule::openByAlias(str(name));
            ADD_FAILURE() << name << " was opened";
        } catch (const data::DataError& error) {
            EXPECT_EQ(error.kind(), data::ErrorKind::NoConnection) << name;
            EXPECT_TRUE(error.detail().contains(str(reason))) << error.what();
        }
        removeAlias(str(name));
    }
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

QString marks(data::Database& database) {
    data::TUniQuery query(&database);
    query.sql().add(str("select ininimi, sektio, avain, data from ini order by avain, data"));
    QString text;
    for (query.open(); !query.eof(); query.next()) {
        for (const QString& name : query.fieldNames())
            text += query.fieldByName(name).asString() + u'|';
        text += u'\n';
    }
    return text;
}

void run(data::Database& database, const QString& statement) {
    data::TUniQuery query(&database);
    query.sql().add(statement);
    query.execSql();
}

TEST_F(ConnectionTest, RunMark) {
    data::Database& database = companyDatabase();
    run(database, str("insert into ini values ('ZAV.INI', 'TAKSAVAIHE', '20230101', 'vanha')"));
    const QString other = str("ZAV.INI|TAKSAVAIHE|20230101|vanha|\n");
    EXPECT_FALSE(ExecutionMarkExists(database));
    EXPECT_EQ(DeleteExecutionMark(database), 0);

    writeExecutionMark(database, QDateTime(QDate(2024, 9, 1), QTime(7, 5, 9)));
    EXPECT_TRUE(ExecutionMarkExists(database));
    EXPECT_EQ(marks(database), other + str("ZAV.INI|TAKSAVAIHE|20240901|2024-09-01 07:05:09|\n"));
    writeExecutionMark(database, QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59)));
    EXPECT_EQ(marks(database), other + str("ZAV.INI|TAKSAVAIHE|20240901|2024-12-31 23:59:59|\n"));

    run(database, str("update ini set data='' where avain='20240901'"));
    EXPECT_FALSE(ExecutionMarkExists(database));
    EXPECT_EQ(DeleteExecutionMark(database), 1);
    for (int i = 0; i < 2; ++i)
        run(database, str("insert into ini values ('ZAV.INI', 'TAKSAVAIHE', '20240901', 'x')"));
    EXPECT_EQ(DeleteExecutionMark(database), 2);
    EXPECT_EQ(marks(database), other);
}

}  // namespace
