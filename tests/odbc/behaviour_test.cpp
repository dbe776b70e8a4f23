// One suite of what statements may rely on, over the embedded engine and every ODBC driver.

#include <QElapsedTimer>

#include "tests/odbc/sql_drivers.h"

namespace {

using data::DataError;
using data::ErrorKind;
using data::TUniQuery;
using test::exec;
using test::rows;
using test::Rows;

QString text(const char8_t* utf8) {
    return QString::fromUtf8(utf8);
}

class SqlBehaviour : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        const QString name = QLatin1String(GetParam());
        if (!test::SqlEngine::isAvailable(name))
            GTEST_SKIP() << "the SQL servers are not running";
        m_engine = std::make_unique<test::SqlEngine>(
            name, QStringList{"KAMPPANJA", "VAKIOLASKUTUS", "MAARAALE", "MYYMALAHINNAT", "INI",
                              "ALVKANTA", "X$File"});
    }
    data::Database& db() { return m_engine->database(); }
    bool isEmbeddedData() const {
        return m_engine->name() == u"embedded" || m_engine->name() == u"sqlite";
    }

    /// The kind of error that a statement must fail with.
    ErrorKind kindOf(const QString& sql) {
        try {
            exec(db(), sql);
        } catch (const DataError& error) {
            EXPECT_FALSE(error.detail().isEmpty());
            return error.kind();
        }
        ADD_FAILURE() << "no error: " << sql.toStdString();
        return ErrorKind::Damaged;
    }

    std::unique_ptr<test::SqlEngine> m_engine;
};

TEST_P(SqlBehaviour, ValuesComeBackAsTheyWereBound) {
    const QString special = text(u8"Äyräs 'ö' \"å\" € ; :nimi -- /*?");
    exec(db(),
         "insert into KAMPPANJA (Tuote, RiviNro, Ostohinta, Myyntihinta, Prosentti, Id, "
         "PitkaTunnus, "
         "Alku, AlkuKlo) values (:t, :r, :o, :m, :p, :i, :x, :a, :k)",
         {{"t", "A 1"},
          {"r", -32768},
          {"o", 0.1},
          {"m", 2.5},
          {"p", true},
          {"i", 2147483647},
          {"x", ""},
          {"a", QDate(2024, 8, 31)},
          {"k", QTime(23, 5, 9)}});
    exec(db(), "insert into VAKIOLASKUTUS (Id, Tuote, ahinta, Lisatieto) values (7, :t, :h, :l)",
         {{"T", "5%"}, {"h", 1e-7}, {"L", special}});
    EXPECT_EQ(rows(db(),
                   "select Tuote, RiviNro, Ostohinta, Myyntihinta, Prosentti, Id, PitkaTunnus, "
                   "Alku, AlkuKlo from KAMPPANJA where PitkaTunnus='' and Alku = '2024-08-31'"),
              Rows{"A 1|-32768|0.1|2.5|1|2147483647||2024-08-31|23:05:09"});
    // a name that stands in several places is bound in each; texts and comments hold none
    EXPECT_EQ(rows(db(),
                   "select Lisatieto, ahinta -- not :this\n from VAKIOLASKUTUS /* nor :that */ "
                   "where Lisatieto=:l and (:L=Lisatieto or Lisatieto=':none') ",
                   {{"l", special}}),
              Rows{(special + "|0.0000001").toStdString()});
}

TEST_P(SqlBehaviour, RowsHoldWholeNumbersDoublesAndTexts) {
    exec(db(), "insert into MAARAALE (Numero, Nimi, Arvo, Ostohinta) values (3, 'x', 0.1, 0.1)");
    TUniQuery query(&db());
    query.sql().setText("select Numero, Nimi, Arvo, Ostohinta from MAARAALE");
    query.open();
    EXPECT_EQ(query.recordCount(), 1);
    EXPECT_EQ(query.fieldByName("numero").value().typeId(), QMetaType::LongLong);
    EXPECT_EQ(query.fieldByName("NIMI").value().typeId(), QMetaType::QString);
    EXPECT_EQ(query.fieldByName("ostohinta").value().typeId(), QMetaType::Double);
    EXPECT_EQ(query.fieldByName("ostohinta").asFloat(), 0.1);
    // a single-precision column gives the single that it holds
    EXPECT_EQ(query.fieldByName("arvo").asFloat(), static_cast<double>(0.1F));
    EXPECT_EQ(rows(db(), "select count(*) from MAARAALE"), Rows{"1"});
}

TEST_P(SqlBehaviour, EmptyDatesAreTheEmptyTextAndComeBeforeAllOthers) {
    const auto add = [&](const char* product, const char* end) {
        exec(db(), QStringLiteral("insert into KAMPPANJA (Tuote, Loppu) values ('%1', %2)")
                       .arg(QLatin1String(product), QLatin1String(end)));
    };
    add("none", "NULL");
    add("before", "'2024-08-31'");
    add("day", "'20240901'");
    add("after", "'2024-09-02'");
    const auto products = [&](const char* condition) {
        std::string found;
        for (const std::string& product :
             rows(db(), QStringLiteral("select Tuote from KAMPPANJA where %1 order by Tuote")
                            .arg(QLatin1String(condition))))
            found += (found.empty() ? "" : ",") + product;
        return found;
    };
    EXPECT_EQ(products("loppu='' or loppu>='20240901'"), "after,day,none");
    EXPECT_EQ(products("kamppanja.loppu = '' or (kamppanja.Loppu>='2024-09-02')"), "after,none");
    EXPECT_EQ(products("loppu < '2024-09-01'"), "before,none");
    EXPECT_EQ(products("loppu <= '20240831'"), "before,none");
    EXPECT_EQ(products("loppu <> ''"), "after,before,day");
    EXPECT_EQ(products("loppu = '20240901'"), "day");
    EXPECT_EQ(rows(db(), "select Tuote, Loppu from KAMPPANJA order by Tuote"),
              (Rows{"after|2024-09-02", "before|2024-08-31", "day|2024-09-01", "none|"}));
    // set to empty and to a date, by text and by parameter
    EXPECT_EQ(exec(db(), "update KAMPPANJA set Loppu='' where Tuote='day'"), 1);
    EXPECT_EQ(
        exec(db(), "update KAMPPANJA set Loppu=:l where Tuote='none'", {{"l", QDate(2025, 1, 2)}}),
        1);
    EXPECT_EQ(exec(db(), "update KAMPPANJA set Loppu = :l, Alku='20241231' where Tuote='after'",
                   {{"l", QDate()}}),
              1);
    EXPECT_EQ(rows(db(), "select Tuote, Loppu, Alku from KAMPPANJA order by Tuote"),
              (Rows{"after||2024-12-31", "before|2024-08-31|", "day||", "none|2025-01-02|"}));
}

TEST_P(SqlBehaviour, FunctionsGiveTheDayAndTheTime) {
    exec(db(), "insert into VAKIOLASKUTUS (Id) values (1)");
    exec(db(), "insert into MYYMALAHINNAT (Myymala, Tuote) values (1, 'A')");
    EXPECT_EQ(exec(db(), "update vakiolaskutus set muutospvm = curdate(), muutosaika = CURTIME()"),
              1);
    exec(db(), "update myymalahinnat set muutettu =now() where tuote=:t", {{"t", "A"}});
    const QDateTime now = QDateTime::currentDateTime();
    TUniQuery query(&db());
    query.sql().setText("select muutospvm, muutosaika, muutettu from vakiolaskutus, myymalahinnat");
    query.open();
    ASSERT_EQ(query.recordCount(), 1);
    EXPECT_EQ(query.fieldByName("MuutosPvm").asDate(), now.date());
    const QTime time = QTime::fromString(query.fieldByName("MuutosAika").asString(), "HH:mm:ss");
    EXPECT_LE(std::abs(time.secsTo(now.time())), 5);
    const auto changed =
        QDateTime::fromString(query.fieldByName("muutettu").asString(), "yyyy-MM-dd HH:mm:ss");
    EXPECT_LE(std::abs(changed.secsTo(now)), 5);
}

TEST_P(SqlBehaviour, RoundingIsInDoublesHalvesAwayFromZero) {
    exec(db(),
         "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta2, Hinta3, Hinta4, Hinta5) "
         "values (1, 'A', 2.5, -2.5, 0.125, 7, 1.005)");
    // 0.125 * 100 is a half, 1.005 * 100 is 100.49999999999999
    EXPECT_EQ(rows(db(),
                   "select round(hinta1), ROUND( (hinta2) ), round( ( hinta3),2), "
                   "round(hinta3 * -1, 2), round(hinta5,2) from myymalahinnat"),
              Rows{"3|-3|0.13|-0.13|1"});
    // floor((7 * 20 + 0.9999)) / 20, and halves of whole numbers
    EXPECT_EQ(rows(db(),
                   "select FLOOR((( hinta4)* 20) + 0.9999) / 20, floor(hinta1)/4, hinta4/1.255, "
                   "floor(hinta2) from myymalahinnat"),
              Rows{"7|0.5|5.577689243027889|-3"});
    EXPECT_EQ(exec(db(), "update myymalahinnat set hinta4 = round( ( hinta4 * 1.255),2)"), 1);
    EXPECT_EQ(rows(db(), "select hinta4 from myymalahinnat"), Rows{"8.79"});  // 8.785
}

TEST_P(SqlBehaviour, ColumnsOfAnEmptyResultAndTheCatalogue) {
    TUniQuery query(&db());
    query.sql().setText("select top 0 * from ini");
    query.open();
    EXPECT_EQ(query.recordCount(), 0);
    EXPECT_EQ(query.fieldNames(), (QStringList{"IniNimi", "Sektio", "Avain", "Data"}));
    for (const int i : {1, 2, 3})
        exec(db(), QStringLiteral("insert into ini values ('ZAV.INI', 'S', '%1', 'x')").arg(i));
    EXPECT_EQ(rows(db(), "select top 2 avain from ini order by avain desc;"), (Rows{"3", "2"}));
    if (!isEmbeddedData())
        exec(db(), "insert into X$File (Xf$Id, Xf$Name) values (1, 'MYYMALAHINNAT')");
    EXPECT_EQ(rows(db(), "select xf$name from x$file where xf$name='MYYMALAHINNAT'"),
              Rows{"MYYMALAHINNAT"});
    EXPECT_TRUE(rows(db(), "select * from x$file where xf$name='PUUTTUU'").empty());
}

TEST_P(SqlBehaviour, RowsAffectedAreTheRowsThatTheConditionNames) {
    for (const int i : {1, 2, 3})
        exec(db(),
             QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (%1, 24)").arg(i));
    EXPECT_EQ(exec(db(), "update ALVKANTA set Prosentti=25.5 where luokka>=2"), 2);
    // also those that change nothing
    EXPECT_EQ(exec(db(), "update ALVKANTA set Prosentti=25.5 where luokka>=:n", {{"n", 2}}), 2);
    EXPECT_EQ(exec(db(), "update ALVKANTA set Prosentti=1 where luokka=9"), 0);
    EXPECT_EQ(exec(db(), "delete from ALVKANTA where luokka=9"), 0);
    EXPECT_EQ(exec(db(), "delete from ALVKANTA where luokka<3"), 2);
    EXPECT_EQ(rows(db(), "select luokka, Prosentti from ALVKANTA"), Rows{"3|25.5"});
}

TEST_P(SqlBehaviour, LargeResultsAreFixedWhenTheyAreOpened) {
    constexpr int kRows = 3000;
    const QString data(900, u'ä');
    db().inTransaction([&] {
        for (int i = 0; i < kRows; ++i)
            exec(db(), "insert into ini (IniNimi, Sektio, Avain, Data) values ('A', 'B', :a, :d)",
                 {{"a", QString::number(i)}, {"d", data + QString::number(i)}});
    });
    TUniQuery query(&db());
    query.sql().setText("select Avain, Data from ini where IniNimi='A'");
    query.open();
    EXPECT_EQ(query.recordCount(), kRows);
    EXPECT_EQ(exec(db(), "update ini set Data='' where IniNimi='A'"), kRows);
    int seen = 0;
    for (; !query.eof(); query.next(), ++seen)
        ASSERT_EQ(query.fieldByName("Data").asString(),
                  data + query.fieldByName("Avain").asString());
    EXPECT_EQ(seen, kRows);
}

TEST_P(SqlBehaviour, FailuresTellWhatTheyAre) {
    EXPECT_EQ(kindOf("update EIOLE set a=1"), ErrorKind::NoSuchTable);
    EXPECT_EQ(kindOf("update ALVKANTA set eiole=1"), ErrorKind::NoSuchField);
    EXPECT_EQ(kindOf("update ALVKANTA set Prosentti=round( (1)*20)/20)"), ErrorKind::Syntax);
    EXPECT_THROW(rows(db(), "select from"), DataError);
    // the connection goes on
    exec(db(), "insert into ALVKANTA (luokka, Prosentti) values (1, 24)");
    EXPECT_EQ(rows(db(), "select luokka from ALVKANTA"), Rows{"1"});
}

TEST_P(SqlBehaviour, TransactionsAreStoredWholeOrNotAtAll) {
    const auto add = [&](int number) {
        exec(db(), "insert into ALVKANTA (luokka, Prosentti) values (:n, 1)", {{"n", number}});
    };
    EXPECT_THROW(db().inTransaction([&] {
        add(1);
        throw DataError(ErrorKind::BadValue, {}, "stop");
    }),
                 DataError);
    EXPECT_TRUE(rows(db(), "select luokka from ALVKANTA").empty());
    db().inTransaction([&] {
        add(1);
        db().inTransaction([&] { add(2); });
    });
    const auto other = m_engine->connect();
    EXPECT_EQ(rows(*other, "select luokka from ALVKANTA order by luokka"), (Rows{"1", "2"}));
}

TEST_P(SqlBehaviour, WhatAnotherConnectionHoldsIsALockErrorAfterTheWait) {
    exec(db(), "insert into ALVKANTA (luokka, Prosentti) values (1, 24)");
    // a server that cannot be told the lock's wait holds the statement's time limit
    const auto other = m_engine->connect(std::chrono::milliseconds(3000));
    other->setLockWait(std::chrono::milliseconds(1000));
    db().inTransaction([&] {
        exec(db(), "update ALVKANTA set Prosentti=25 where luokka=1");
        QElapsedTimer timer;
        timer.start();
        if (isEmbeddedData())
            return;  // its transactions wait for each other far longer
        try {
            exec(*other, "update ALVKANTA set Prosentti=26 where luokka=1");
            ADD_FAILURE() << "no lock";
        } catch (const DataError& error) {
            EXPECT_EQ(error.kind(), ErrorKind::Locked) << error.what();
        }
        EXPECT_LT(timer.elapsed(), 6000);
    });
    EXPECT_EQ(exec(*other, "update ALVKANTA set Prosentti=27 where luokka=1"), 1);
    EXPECT_EQ(rows(db(), "select Prosentti from ALVKANTA"), Rows{"27"});
}

// What is wrong with a transaction may show only when it is stored.
TEST(Transactions, OneThatCannotBeStoredLeavesNothingOpen) {
    if (!test::SqlEngine::isAvailable(QStringLiteral("sqlite")))
        GTEST_SKIP() << "the ODBC drivers are not set up";
    const test::SqlEngine engine(QStringLiteral("sqlite"), {});
    engines::shops::OdbcSettings settings = engine.settings();
    settings.attributes = QStringLiteral("Database=%1/oma.db;FKSupport=1").arg(engine.folder());
    test::OdbcDatabase database(settings);
    exec(database,
         "create table koe (a integer primary key, b integer references koe(a) deferrable "
         "initially deferred)");
    EXPECT_THROW(database.inTransaction([&] { exec(database, "insert into koe values (1, 9)"); }),
                 DataError);
    exec(database, "insert into koe values (2, 2)");
    test::OdbcDatabase other(settings);
    EXPECT_EQ(rows(other, "select a from koe"), Rows{"2"});
}

// A program that edits a record holds the statements of others that come by the loadable module.
TEST(LoadableModule, KeepsTheRecordLocksOfTheEngine) {
    if (!test::SqlEngine::isAvailable(QStringLiteral("sqlite")))
        GTEST_SKIP() << "the ODBC drivers are not set up";
    const test::SqlEngine engine(QStringLiteral("sqlite"), {});
    data::Database& sql = engine.database();
    for (const int i : {1, 2})
        exec(sql,
             QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (%1, 24)").arg(i));
    EXPECT_THROW(exec(sql, "insert into ALVKANTA (luokka, Prosentti) values (1, 10)"), DataError);
    const auto program = engines::openEmbedded(QStringLiteral("KOE"), engine.folder());
    const auto records = program->openTable(QStringLiteral("ALVKANTA"));
    const auto found = records->seek(0, data::SeekOp::Equal, {1}, 1);
    ASSERT_EQ(found.size(), 1U);
    ASSERT_TRUE(records->lock(found[0].id, std::chrono::milliseconds(0)));
    EXPECT_EQ(exec(sql, "update ALVKANTA set Prosentti=14 where luokka=2"), 1);
    sql.setLockWait(std::chrono::milliseconds(300));
    QElapsedTimer timer;
    timer.start();
    try {
        exec(sql, "update ALVKANTA set Prosentti=14");
        ADD_FAILURE() << "no lock";
    } catch (const DataError& error) {
        EXPECT_EQ(error.kind(), ErrorKind::Locked) << error.what();
    }
    EXPECT_GE(timer.elapsed(), 300);
    EXPECT_LT(timer.elapsed(), 2000);
    // the refused statement holds nothing, and the engine's own program goes on
    records->update(found[0].id, found[0].bytes);
    const auto second = records->seek(0, data::SeekOp::Equal, {2}, 1);
    EXPECT_TRUE(records->lock(second.at(0).id, std::chrono::milliseconds(0)));
    records->unlock(second.at(0).id);
    records->unlock(found[0].id);
    EXPECT_EQ(exec(sql, "update ALVKANTA set Prosentti=14"), 2);
    EXPECT_EQ(rows(*program, "select Prosentti from ALVKANTA"), (Rows{"14", "14"}));
}

QStringList& traced() {
    static QStringList lines;
    return lines;
}

TEST(Tracing, TellsCallsStatementsAndErrorsButNoPassword) {
    if (!test::SqlEngine::isAvailable(text(u8"sqlite")))
        GTEST_SKIP() << "no driver";
    const test::SqlEngine engine(text(u8"sqlite"), {text(u8"ALVKANTA")});
    engines::shops::OdbcSettings settings = engine.settings();
    settings.password = text(u8"salainen");
    traced().clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& line) { traced().append(line); });
    engines::shops::OdbcConnection::setTracing(true);
    try {
        test::OdbcDatabase database(settings);
        exec(database, text(u8"update ALVKANTA set Prosentti=1"));
        exec(database, text(u8"update PUUTTUU set Prosentti=1"));
        ADD_FAILURE() << "no error";
    } catch (const DataError& error) {
        EXPECT_EQ(error.kind(), ErrorKind::NoSuchTable);
    }
    engines::shops::OdbcConnection::setTracing(false);
    qInstallMessageHandler(previous);
    const QString all = traced().join(u'\n');
    for (const char8_t* part : {u8"odbc SQLDriverConnect = 0 (", u8"odbc SQLExecute = ",
                                u8"update ALVKANTA set", u8"no such table", u8"SQLDisconnect"})
        EXPECT_TRUE(all.contains(text(part))) << all.toStdString();
    EXPECT_FALSE(all.contains(settings.password));
}

INSTANTIATE_TEST_SUITE_P(Engines, SqlBehaviour,
                         ::testing::Values("embedded", "sqlite", "virtuoso", "mariadb"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
