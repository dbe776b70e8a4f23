// Behaviour that statements rely on, on the embedded engine and every ODBC driver.

#include <QElapsedTimer>

#include "tests/odbc/sql_drivers.h"

namespace {

using data::DataError;
using data::ErrorKind;
using data::TUniQuery;
using test::exec;
using test::rows;
using test::str;
using test::thrownBy;

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

    std::unique_ptr<test::SqlEngine> m_engine;
};

TEST_P(SqlBehaviour, ValuesComeBackAsTheyWereBound) {
    const QString special = str("Äyräs 'ö' \"å\" € ; :nimi -- /*?");
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
              QStringList{"A 1|-32768|0.1|2.5|1|2147483647||2024-08-31|23:05:09"});
    // a name is bound in every place; literals and comments have no parameters
    EXPECT_EQ(rows(db(),
                   "select Lisatieto, ahinta -- not :this\n from VAKIOLASKUTUS /* nor :that */ "
                   "where Lisatieto=:l and (:L=Lisatieto or Lisatieto=':none') ",
                   {{"l", special}}),
              QStringList{special + "|0.0000001"});
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
    // single precision
    EXPECT_EQ(query.fieldByName("arvo").asFloat(), static_cast<double>(0.1F));
    EXPECT_EQ(rows(db(), "select count(*) from MAARAALE"), QStringList{"1"});
}

// Runs behaviour.sql: "STATEMENT => ROW / ROW"; a statement without rows gives the rows affected,
// an error its kind.
TEST_P(SqlBehaviour, Statements) {
    QFile script(QStringLiteral(TAKSAVAIHE_SQL_SCRIPT));
    ASSERT_TRUE(script.open(QIODevice::ReadOnly));
    for (const QString& line : QString::fromUtf8(script.readAll()).split(u'\n')) {
        const QString sql = line.section(QStringLiteral(" => "), 0, 0);
        if (sql.isEmpty() || sql.startsWith(u"--"))
            continue;
        QString found;
        try {
            found = sql.startsWith(u"select") ? rows(db(), sql).join(" / ")
                                              : QString::number(exec(db(), sql));
        } catch (const DataError& error) {
            found = error.kind() == ErrorKind::NoSuchTable   ? "no such table"
                    : error.kind() == ErrorKind::NoSuchField ? "no such field"
                    : error.kind() == ErrorKind::Syntax      ? "syntax"
                                                             : error.what();
        }
        EXPECT_EQ(found, line.section(QStringLiteral(" => "), 1)) << sql.toStdString();
    }
    TUniQuery query(&db());
    query.sql().setText("select top 0 * from ini");
    query.open();
    EXPECT_EQ(query.recordCount(), 0);
    EXPECT_EQ(query.fieldNames(), (QStringList{"IniNimi", "Sektio", "Avain", "Data"}));
    EXPECT_THROW(rows(db(), "select from"), DataError);
    EXPECT_EQ(exec(db(), "update KAMPPANJA set Loppu=:l, Alku=:a where Tuote='none'",
                   {{"l", QDate(2025, 1, 2)}, {"a", QDate()}}),
              1);
    EXPECT_EQ(rows(db(), "select Loppu, Alku from KAMPPANJA where Tuote='none'"),
              QStringList{"2025-01-02|"});
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

TEST_P(SqlBehaviour, LargeResultsAreFixedAtOpening) {
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

TEST_P(SqlBehaviour, TransactionsAreAtomic) {
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
    EXPECT_EQ(rows(*other, "select luokka from ALVKANTA order by luokka"), (QStringList{"1", "2"}));
}

TEST_P(SqlBehaviour, RowsLockedByAnotherConnectionAreALockError) {
    exec(db(), "insert into ALVKANTA (luokka, Prosentti) values (1, 24)");
    // a server without a lock wait setting applies the statement's time limit
    const auto other = m_engine->connect(std::chrono::milliseconds(3000));
    other->setLockWait(std::chrono::milliseconds(1000));
    db().inTransaction([&] {
        exec(db(), "update ALVKANTA set Prosentti=25 where luokka=1");
        QElapsedTimer timer;
        timer.start();
        if (isEmbeddedData())
            return;  // its transactions wait far longer
        EXPECT_EQ(thrownBy([&] { exec(*other, "update ALVKANTA set Prosentti=26"); }).kind(),
                  ErrorKind::Locked);
        EXPECT_LT(timer.elapsed(), 6000);
    });
    EXPECT_EQ(exec(*other, "update ALVKANTA set Prosentti=27 where luokka=1"), 1);
    EXPECT_EQ(rows(db(), "select Prosentti from ALVKANTA"), QStringList{"27"});
}

// Some errors of a transaction appear only when it is committed.
TEST(Transactions, AFailedCommitLeavesNoneOpen) {
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
    EXPECT_EQ(rows(other, "select a from koe"), QStringList{"2"});
}

// A record lock of a program stops statements that come through the loadable module.
TEST(LoadableModule, RespectsRecordLocks) {
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
    EXPECT_EQ(thrownBy([&] { exec(sql, "update ALVKANTA set Prosentti=14"); }).kind(),
              ErrorKind::Locked);
    EXPECT_GE(timer.elapsed(), 300);
    EXPECT_LT(timer.elapsed(), 2000);
    // the refused statement left no lock
    records->update(found[0].id, found[0].bytes);
    const auto second = records->seek(0, data::SeekOp::Equal, {2}, 1);
    EXPECT_TRUE(records->lock(second.at(0).id, std::chrono::milliseconds(0)));
    records->unlock(second.at(0).id);
    records->unlock(found[0].id);
    EXPECT_EQ(exec(sql, "update ALVKANTA set Prosentti=14"), 2);
    EXPECT_EQ(rows(*program, "select Prosentti from ALVKANTA"), (QStringList{"14", "14"}));
}

TEST(Tracing, ShowsCallsStatementsAndErrorsButNoPassword) {
    if (!test::SqlEngine::isAvailable(str("sqlite")))
        GTEST_SKIP() << "no driver";
    const test::SqlEngine engine(str("sqlite"), {str("ALVKANTA")});
    engines::shops::OdbcSettings settings = engine.settings();
    settings.password = str("salainen");
    const QString all = test::tracedBy([&] {
                            engines::shops::OdbcConnection::setTracing(true);
                            const DataError error = thrownBy([&] {
                                test::OdbcDatabase database(settings);
                                exec(database, "update ALVKANTA set Prosentti=1");
                                exec(database, "update PUUTTUU set Prosentti=1");
                            });
                            engines::shops::OdbcConnection::setTracing(false);
                            EXPECT_EQ(error.kind(), ErrorKind::NoSuchTable);
                            EXPECT_FALSE(error.detail().isEmpty());
                        }).join(u'\n');
    for (const char* part : {"odbc SQLDriverConnect = 0 (", "odbc SQLExecute = ",
                             "update ALVKANTA set", "no such table", "SQLDisconnect"})
        EXPECT_TRUE(all.contains(str(part))) << all.toStdString();
    EXPECT_FALSE(all.contains(settings.password));
}

INSTANTIATE_TEST_SUITE_P(Engines, SqlBehaviour,
                         ::testing::Values("embedded", "sqlite", "virtuoso", "mariadb"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
