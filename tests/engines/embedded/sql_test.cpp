#include <QFile>

#include "data/clock.h"
#include "data/sql/uni_query.h"
#include "tests/engines/embedded/fixture.h"

using namespace data;
using test::errorOf;

namespace {

class EmbeddedSql : public test::EmbeddedCompany {};

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

}  // namespace

TEST_F(EmbeddedSql, CatalogueIsReadBySqlWhateverTheCase) {
    EXPECT_EQ(rows("select * from x$file where xf$name='MYYMALAHINNAT'").size(), 1);
    EXPECT_EQ(rows("SELECT xf$name FROM X$File WHERE Xf$Name = 'myymalahinnat';"),
              QStringList{"MYYMALAHINNAT"});
    EXPECT_EQ(rows("select * from x$file where xf$name='PUUTTUU'").size(), 0);
    // INI: its fields by number, with their storage codes, offsets and lengths.
    EXPECT_EQ(
        rows("select xe$name, xe$datatype, xe$offset, xe$size from x$file, x$field "
             "where xe$file = xf$id and xf$name = 'ini' order by xe$id"),
        (QStringList{"IniNimi|11|0|41", "Sektio|11|41|61", "Avain|11|102|61", "Data|12|163|1024"}));
    // Its key: three segments that allow duplicates and changes; another follows but the last.
    EXPECT_EQ(rows("select xi$number, xi$part, xi$flags from x$index, x$file where xi$file = xf$id "
                   "and xf$name = 'INI' order by xi$part"),
              (QStringList{"0|0|19", "0|1|19", "0|2|3"}));
    // Every table is described, the catalogue's own too; bits by their place in the byte.
    EXPECT_EQ(rows("select count(*) from x$file where xf$flags = 16"), QStringList{"3"});
    EXPECT_EQ(rows("select xe$datatype, xe$dec from x$field where xe$name = 'LISUKKEENA'"),
              QStringList{"16|5"});
    EXPECT_EQ(db->tableNames().size(), static_cast<int>(allTableSources().size()));
}

TEST_F(EmbeddedSql, SettingsRows) {
    const QString select =
        "select data from ini where ininimi='ZAV.INI' AND sektio='TAKSAVAIHE' AND AVAIN='20240901'";
    EXPECT_EQ(rows(select).size(), 0);
    EXPECT_EQ(run("insert into ini values ( 'ZAV.INI', 'TAKSAVAIHE', '20240901',"
                  "'2024-09-01 04:05:06' )"),
              1);
    EXPECT_EQ(run("insert into ini values ('ZAV.INI','TAKSAVAIHE','20240902','muu')"), 1);
    EXPECT_EQ(rows(select), QStringList{"2024-09-01 04:05:06"});
    EXPECT_EQ(run("update ini set data = 'uusi' where ininimi='ZAV.INI' AND sektio='TAKSAVAIHE' "
                  "AND AVAIN='20240901'"),
              1);
    EXPECT_EQ(rows("select avain, data from ini order by avain"),
              (QStringList{"20240901|uusi", "20240902|muu"}));
    EXPECT_EQ(run("delete from INI where AVAIN='20240901'"), 1);
    EXPECT_EQ(rows(select).size(), 0);
    EXPECT_EQ(rows("select count(*) from ini"), QStringList{"1"});
}

TEST_F(EmbeddedSql, TopBecomesLimitOnlyInFront) {
    run("insert into ini values ('select top 1 x', 'a;b', '', '')");
    run("insert into ini (ininimi) values ('toinen')");
    const auto empty = db->prepare("select top 0 * from hr");
    EXPECT_EQ(empty->columns().size(), 20u);
    EXPECT_EQ(empty->columns()[17].name, "MaaraAleHinta");
    EXPECT_FALSE(empty->step());
    EXPECT_EQ(rows("  SELECT TOP 1 ininimi FROM ini -- viimeinen; huomautus").size(), 1);
    EXPECT_EQ(rows("select ininimi from ini where ininimi = 'select top 1 x' and sektio='a;b' ; "),
              QStringList{"select top 1 x"});
    EXPECT_EQ(rows("select top 5 ininimi from ini where ininimi like 'select top%';").size(), 1);
}

TEST_F(EmbeddedSql, FunctionsFollowTheProductsClock) {
    const Clock::Override clock([] { return QDateTime(QDate(2024, 9, 1), QTime(7, 8, 9)); });
    EXPECT_EQ(rows("select CURDATE(), curtime(), NOW()"),
              QStringList{"2024-09-01|07:08:09|2024-09-01 07:08:09"});
    run("insert into TRYHMA (nro, nimi, vero) values (1, 'Maito', 2), (2, 'Liha', 3)");
    EXPECT_EQ(
        run("UPDATE TRYHMA SET VERO = :UUSIVERO, MUUTOSPVM = CURDATE(), MUUTOSKLO = CURTIME() "
            "WHERE VERO = :VANHAVERO",
            {{"uusivero", 7}, {"vanhavero", 2}}),
        1);
    EXPECT_EQ(rows("select nro, vero, muutospvm, muutosklo from tryhma order by nro"),
              (QStringList{"1|7|2024-09-01|07:08:09", "2|3||00:00:00"}));
}

// Half away from zero on value * 10^d, in doubles; whole numbers are doubles, too.
TEST_F(EmbeddedSql, RoundAndFloor) {
    const struct {
        const char* expression;
        double expected;
    } cases[] = {
        {"round(2.5)", 3},
        {"round(-2.5)", -3},
        {"round(0.125, 2)", 0.13},
        {"round(-0.125, 2)", -0.13},
        {"round(1.005, 2)", 1},  // 1.005 * 100 is 100.49999999999999
        {"round( ( 12.4 * 1.255),3)", 15.562},
        {"round(7)", 7},
        {"round('2.5')", 3},
        {"FLOOR(-1.5)", -2},
        {"FLOOR((( 1.23)* 20) + 0.9999) / 20", 1.25},
    };
    for (const auto& c : cases) {
        const auto statement = db->prepare(QStringLiteral("select ") + c.expression);
        ASSERT_TRUE(statement->step());
        EXPECT_EQ(statement->value(0).typeId(), QMetaType::Double) << c.expression;
        EXPECT_EQ(statement->value(0).toDouble(), c.expected) << c.expression;
    }
    EXPECT_EQ(rows("select round(null, 2), floor(null)"), QStringList{"NULL|NULL"});
}

TEST_F(EmbeddedSql, DatesCompareInEveryForm) {
    run("insert into maaraale (numero, nimi) values (1, 'tyhja')");
    run("insert into TUOTE (numero, muutettupvm) values ('a', ''), ('b', '2024-08-31'), "
        "('c', '20240901'), ('d', null)");
    EXPECT_EQ(rows("select numero from tuote where muutettupvm='' order by numero"),
              (QStringList{"a", "d"}));
    EXPECT_EQ(rows("select numero, muutettupvm from tuote where muutettupvm>='20240901'"),
              QStringList{"c|2024-09-01"});
    EXPECT_EQ(rows("select numero from tuote where muutettupvm < '2024-09-01' and "
                   "muutettupvm <> ''"),
              QStringList{"b"});
    // With a key of a date field: UUSIHINTA has Tuote, Pvm.
    run("insert into uusihinta (avain, tuote, pvm) values (1,'x','2024-01-02'), (2,'x',''), "
        "(3,'x','20240103'), (4,'y','2024-01-02')");
    EXPECT_EQ(rows("select avain from uusihinta where tuote='x' and pvm='20240102'"),
              QStringList{"1"});
    EXPECT_EQ(
        rows("select avain from uusihinta where tuote='x' and pvm>='2024-01-02' order by pvm"),
        (QStringList{"1", "3"}));
    EXPECT_EQ(
        rows("select avain from uusihinta where tuote='x' and pvm<='2024-01-02' order by pvm desc"),
        (QStringList{"1", "2"}));
    EXPECT_EQ(rows("select avain from uusihinta where tuote='x' and pvm > '2024' order by avain"),
              (QStringList{"1", "3"}));
    EXPECT_EQ(errorOf([&] { run("update tuote set muutettupvm = '2024-02-30'"); }).kind(),
              ErrorKind::BadValue);
}

// Values that the key's field cannot hold still compare as SQL says.
TEST_F(EmbeddedSql, ConstraintsOnKeys) {
    run("insert into tryhma (nro, nimi) values (-5,'A'), (0,'B'), (3,'C'), (4,'D'), (32767,'E')");
    const struct {
        const char* condition;
        QStringList expected;
    } numbers[] = {
        {"nro = 3", {"3"}},
        {"nro = '3'", {"3"}},
        {"nro = 3.0", {"3"}},
        {"nro = 3.5", {}},
        {"nro = 70000", {}},
        {"nro = null", {}},
        {"nro > 3.5", {"4", "32767"}},
        {"nro >= 3.5", {"4", "32767"}},
        {"nro < 3.5", {"-5", "0", "3"}},
        {"nro <= 3", {"-5", "0", "3"}},
        {"nro > -1 and nro < 4", {"0", "3"}},
        {"nro < 70000 and nro > 3", {"4", "32767"}},
        {"nro > 70000", {}},
        {"nro > -70000 and nro < 0", {"-5"}},
        {"nro < 'x' and nro > 4", {"32767"}},
        {"nro in (4, 3, 99)", {"3", "4"}},
        {"nro not in (4, 3, 99, 0)", {"-5", "32767"}},
    };
    for (const auto& c : numbers)
        EXPECT_EQ(
            rows(QStringLiteral("select nro from tryhma where %1 order by nro").arg(c.condition)),
            c.expected)
            << c.condition;

    run("insert into verkkokaupassa (tuote) values (''), ('A'), ('Ab'), ('a'), (:a), (:o), (:e)",
        {{"a", text("ä")}, {"o", text("öl")}, {"e", text("€")}});
    const struct {
        const char* condition;
        QStringList expected;
    } texts[] = {
        {"tuote = 'A'", {"A"}},
        {"tuote = ''", {""}},
        {"tuote = 'ÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄ'", {}},
        {"tuote = '\u4e2d'", {}},
        {"tuote >= 'Ab'", {"Ab", "a", "€", "ä", "öl"}},
        {"tuote > 'Abbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb'", {"a", "€", "ä", "öl"}},
        {"tuote < 'b'", {"", "A", "Ab", "a"}},
        {"tuote > 'z' and tuote <= 'ä'", {"€", "ä"}},
        {"tuote > 'ä' and tuote < '\u4e2d'", {"öl"}},
        {"tuote between 'A' and 'a'", {"A", "Ab", "a"}},
    };
    for (const auto& c : texts)
        EXPECT_EQ(rows(QStringLiteral("select tuote from verkkokaupassa where %1 order by tuote")
                           .arg(text(c.condition))),
                  c.expected)
            << c.condition;
}

TEST_F(EmbeddedSql, NumberAgainstTextFollowsSqlNotTheKey) {
    run("insert into tuote (numero, nimi) values ('7','x'), ('07','y'), ('8','z')");
    EXPECT_EQ(rows("select nimi from tuote where numero = 7"), QStringList{"x"});
    EXPECT_EQ(rows("select nimi from tuote where numero = '07'"), QStringList{"y"});
    run("insert into mt (numero, asiakas) values (7, 1)");
    EXPECT_EQ(rows("select nimi from tuote, mt where tuote.numero = mt.numero order by nimi"),
              (QStringList{"x", "y"}));
}

TEST_F(EmbeddedSql, JoinsOfTheRun) {
    run("insert into tuote (numero, nimi, lvv, aliryhma, ryhma) values ('p1','Eka',2,10,1), "
        "('p2','Toka',3,11,2)");
    run("insert into asale (asiakasnumero, tuote, hinta, tyyppi, maara, asikastyyppi) values "
        "(1,'p1',10,1,1,0), (2,'p1',20,1,5,0), (9,'p1',30,1,0,1), (1,'p2',40,1,1,0)");
    run("insert into asiakas (asiakas, ryhma) values (1, 9), (2, 8)");
    run("insert into asryhma (nro) values (8), (9)");
    EXPECT_EQ(
        rows("SELECT AsiakasNumero, tuote, asale.hinta, asale.hintaalv0, maara, AsikasTyyppi, "
             "Alkaa, "
             "Loppuu, Huom, Tyyppi, Maara, KplAle, OstoHinta, OstohintaLahtoinen, vainkortilla "
             "from ASALE, TUOTE where (tuote = numero) and (tyyppi = 1) and (asale.prosentteina = "
             "0) "
             "and (asale.hinta > 0) and (OstohintaLahtoinen = 0) and (AliRyhma = 10) AND ( lvv = 2 "
             "OR "
             "alv2 = 2 OR ostovero = 2)and (((Asikastyyppi = 0) and (AsiakasNumero IN (SELECT "
             "ASIAKAS.ASIAKAS FROM ASIAKAS, ASRYHMA WHERE (ASIAKAS.RYHMA = ASRYHMA.NRO) AND "
             "(ASRYHMA.NRO IN ( 9 ))))) or ( (Asikastyyppi = 1) and (Asiakasnumero IN ( 9 ))))"),
        (QStringList{"1|p1|10|0|1|0||||1|1|0|0|0|0", "9|p1|30|0|0|1||||1|0|0|0|0|0"}));
    EXPECT_EQ(
        run("UPDATE ASALE set hinta = :uusihinta, hintaalv0 = :uusihintaalv0, ostohinta = "
            ":uusiostohinta where tuote = :tuote and AsiakasNumero = :asiakasNumero and maara = "
            ":maara and AsikasTyyppi = :Asiakastyyppi",
            {{"uusihinta", 12.5},
             {"uusihintaalv0", 10.0},
             {"uusiostohinta", 0.1},
             {"tuote", "p1"},
             {"asiakasnumero", 2},
             {"maara", 5.0},
             {"asiakastyyppi", 0}}),
        1);
    // The purchase price is single precision: it reads back as that single.
    EXPECT_EQ(rows("select asiakasnumero, hinta, ostohinta = 0.1, ostohinta from asale where "
                   "hinta = 12.5"),
              QStringList{"2|12.5|0|0.10000000149011612"});

    run("insert into maaraale (numero, nimi, arvo) values (1,'m1',2), (2,'m2',3)");
    run("update tuote set maaraale = 2 where numero = 'p1'");
    EXPECT_EQ(rows("SELECT numero, nimi, arvo, ostohinta from maaraale where exists (select numero "
                   "from tuote where tuote.maaraale = maaraale.numero and (loppu='' or "
                   "loppu>='20240701' ) and ( lvv = 2 OR alv2 = 2 OR ostovero = 2) )"),
              QStringList{"2|m2|3|0"});
    run("insert into maaraale (numero) values (3), (4), (5), (6)");
    run("update tuote set maaraale = 5 where numero = 'p2'");
    EXPECT_EQ(rows("select numero from maaraale where exists (select numero from tuote where "
                   "tuote.maaraale = maaraale.numero) order by numero"),
              (QStringList{"2", "5"}));

    run("insert into myymalahinnat (myymala, tuote, hinta1, hinta1alv0, muutettu) values "
        "(1,'p1',12.4,10,'2024-01-01 10:00:00'), (2,'p1',24.8,20,''), (1,'p2',1,1,null)");
    EXPECT_EQ(
        rows("select * from myymalahinnat, tuote where numero=tuote and lvv= 2 order by tuote")
            .size(),
        2);
    const Clock::Override clock([] { return QDateTime(QDate(2024, 9, 1), QTime(1, 2, 3)); });
    EXPECT_EQ(
        run("update myymalahinnat set  hinta1 = round( ( hinta1alv0 * 1.255),2), hinta2alv0 = "
            "hinta1/2, muutettu =now() where tuote=:t",
            {{"T", "p1"}}),
        2);
    EXPECT_EQ(
        rows("select myymala, hinta1, hinta2alv0, muutettu from myymalahinnat order by tuote, "
             "myymala"),
        (QStringList{"1|12.55|6.2|2024-09-01 01:02:03", "2|25.1|12.4|2024-09-01 01:02:03",
                     "1|1|0|"}));
    // The malformed statement of the 5 cent step fails when it is prepared, not before.
    const DataError error = errorOf([&] {
        run("update myymalahinnat set  hinta1 = round( ( hinta1alv0 * 1.255)*20)/20) where "
            "tuote=:t");
    });
    EXPECT_EQ(error.kind(), ErrorKind::Syntax);
}

TEST_F(EmbeddedSql, LabelRowIsInsertedWhenNoneIsUpdated) {
    const QString update =
        "update hr set maara = :maara, tulpvm=null, tulaika=0,h1=0,h2=0, h3=0, h4=0, h5=0, h6=0, "
        "h7=0, h8=0, h9=0, voimassa=null, pantti=0, maaraale='', maaraalehinta=0,maaraalekpl=0,"
        "MaaraAleHinPanttilla=0  where tuote = :tuote and tyyppi=1";
    EXPECT_EQ(run(update, {{"maara", 3.0}, {"tuote", "p1"}}), 0);
    EXPECT_EQ(run("insert into hr (tyyppi,tuote,maara) values (1,:tuote,:maara)",
                  {{"maara", 3.0}, {"tuote", "p1"}}),
              1);
    run("update hr set tulpvm = '2024-01-01', voimassa = '20240101', h1 = 5, maaraale = 'x'");
    EXPECT_EQ(run(update, {{"maara", 4.0}, {"tuote", "p1"}}), 1);
    EXPECT_EQ(rows("select tyyppi, tuote, maara, tulpvm, voimassa, h1, maaraale from hr"),
              QStringList{"1|p1|4|||0|"});
}

TEST_F(EmbeddedSql, UpdateChangesItsRowsAlone) {
    run("insert into webkliitos (taulu, tunniste, tyyppi) values ('TUOTE','1','M'), "
        "('TUOTE','1','P'), ('TUOTE','1','L')");
    EXPECT_EQ(run("update webkliitos set tyyppi='X' where taulu='TUOTE' and tunniste='1' and "
                  "tyyppi='P'"),
              1);
    EXPECT_EQ(rows("select tyyppi from webkliitos where taulu='TUOTE' and tunniste='1'"),
              (QStringList{"M", "X", "L"}));
    // A statement that moves rows along the key that it walks meets each once.
    run("insert into tryhma (nro) values (1), (2), (3)");
    EXPECT_EQ(run("update tryhma set nro = nro + 100 where nro > 0"), 3);
    EXPECT_EQ(rows("select nro from tryhma order by nro"), (QStringList{"101", "102", "103"}));
    EXPECT_EQ(run("delete from tryhma where nro in (101, 103)"), 2);
    EXPECT_EQ(rows("select nro from tryhma"), QStringList{"102"});
}

TEST_F(EmbeddedSql, BadValueChangesNothing) {
    run("insert into tryhma (nro, nimi, vero) values (1,'A',1), (2,'B',2), (3,'C',3)");
    run("insert into mtrivi (tilausnro, rivinro, ostovero) values (1,1,1), (1,2,200 - 100)");
    const struct {
        const char* sql;
        const char* table;
        const char* field;
        const char* value;
    } cases[] = {
        // The second row fails: the first keeps its value.
        {"update mtrivi set ostovero = ostovero + rivinro * 20", "MTRIVI", "OstoVero", "140"},
        {"update mtrivi set ostovero = 300", "MTRIVI", "OstoVero", "300"},
        {"update mtrivi set verokanta = 1.5", "MTRIVI", "Verokanta", "1.5"},
        {"update mtrivi set verokanta = 'abc'", "MTRIVI", "Verokanta", "abc"},
        {"update tryhma set nimi = '12345678901234567890123456789012345678901234567890'", "TRYHMA",
         "Nimi", "1234567890"},
        {"update tryhma set nimi = '\u4e2d'", "TRYHMA", "Nimi", "\u4e2d"},
    };
    for (const auto& c : cases) {
        const DataError error = errorOf([&] { run(text(c.sql)); });
        EXPECT_EQ(error.kind(), ErrorKind::BadValue) << c.sql;
        EXPECT_EQ(error.table(), c.table);
        EXPECT_TRUE(error.detail().contains(text(c.field))) << error.english().toStdString();
        EXPECT_TRUE(error.detail().contains(text(c.value))) << error.english().toStdString();
    }
    EXPECT_EQ(rows("select rivinro, ostovero, verokanta from mtrivi order by rivinro"),
              (QStringList{"1|1|0", "2|100|0"}));
    EXPECT_EQ(rows("select nimi from tryhma order by nro"), (QStringList{"A", "B", "C"}));
    const DataError twice = errorOf([&] { run("update tryhma set nro = 3 where nro >= 1"); });
    EXPECT_EQ(twice.kind(), ErrorKind::DuplicateKey);
    EXPECT_TRUE(twice.detail().contains("Nro \"3\"")) << twice.english().toStdString();
    EXPECT_EQ(rows("select nro from tryhma order by nro"), (QStringList{"1", "2", "3"}));
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

TEST_F(EmbeddedSql, FieldsThatShareBytes) {
    // LISUKKEENA and BIT1_5 are bit 32 of the byte BIT1; a named bit wins over the byte.
    run("insert into tuote (numero, lisukkeena) values ('a', 1)");
    run("insert into tuote (numero, bit1, lisukkeena) values ('b', 65, 1)");
    run("insert into tuote (numero, bit1) values ('c', 97)");
    EXPECT_EQ(
        rows("select numero, bit1, bit1_0, bit1_5, lisukkeena, bit1_6 from tuote order by numero"),
        (QStringList{"a|32|0|1|1|0", "b|97|1|1|1|1", "c|97|1|1|1|1"}));
    EXPECT_EQ(run("update tuote set lisukkeena = 0 where numero = 'c'"), 1);
    EXPECT_EQ(run("update tuote set bit1 = 2, bit1_0 = 1 where numero = 'b'"), 1);
    EXPECT_EQ(rows("select numero, bit1, bit1_5 from tuote where numero > 'a' order by numero"),
              (QStringList{"b|3|0", "c|65|0"}));
    EXPECT_EQ(rows("SELECT numero, nimi FROM TUOTE WHERE lisukkeena = 1;"), QStringList{"a|"});
}

TEST_F(EmbeddedSql, WhatTheUsersSqlMayNotDo) {
    for (const char* sql : {"select * from rec_TUOTE", "drop table tuote", "delete from rec_ini",
                            "pragma synchronous = off", "begin", "create table oma (a)",
                            "attach ':memory:' as m", "select * from sqlite_master"}) {
        EXPECT_NE(errorOf([&] { run(sql); }).kind(), ErrorKind::Syntax) << sql;
    }
    const QString copy = folder() + "/kopio.db";
    for (const QString& sql : {QString("vacuum"), QString("/* */ VACUUM main -- "),
                               "vacuum into '" + copy + "'", "vacuum into (select '" + copy + "')",
                               QString("insert into tryhma (nro) values (1) returning nro")}) {
        EXPECT_THROW(run(sql), DataError) << sql.toStdString();
        TUniQuery query(db.get());
        query.sql().add(sql);
        EXPECT_THROW(query.execSql(), DataError) << sql.toStdString();
    }
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_EQ(rows("/* */ with x(n) as (select count(*) from tryhma) select n from x"),
              QStringList{"0"});
    EXPECT_EQ(run("with x(n) as (values (7)) insert into tryhma (nro) select n from x"), 1);
    EXPECT_EQ(rows("values (1), (2)"), (QStringList{"1", "2"}));
    EXPECT_EQ(errorOf([&] { db->prepare("select from"); }).kind(), ErrorKind::Syntax);
    EXPECT_EQ(errorOf([&] { db->prepare(" ; "); }).kind(), ErrorKind::Syntax);
    EXPECT_EQ(errorOf([&] { db->prepare("select 1; select 2"); }).kind(), ErrorKind::Syntax);
    EXPECT_EQ(errorOf([&] { db->prepare("select * from puuttuu"); }).kind(),
              ErrorKind::NoSuchTable);
    EXPECT_EQ(errorOf([&] { db->prepare("select puuttuu from ini"); }).kind(),
              ErrorKind::NoSuchField);
}

TEST_F(EmbeddedSql, ParametersAreFoundWhateverTheirCase) {
    const auto statement = db->prepare("select :Luku + :luku, ':ei', :toinen");
    EXPECT_EQ(statement->parameterNames(), (QStringList{"Luku", "toinen"}));
    statement->bind("LUKU", 2);
    EXPECT_EQ(errorOf([&] { statement->bind("ei", 1); }).kind(), ErrorKind::NoSuchField);
    ASSERT_TRUE(statement->step());
    EXPECT_EQ(statement->value(0), Value(qint64{4}));
    EXPECT_FALSE(statement->value(2).isValid());
}

// Writing through the same connection while a result is read harms neither.
TEST_F(EmbeddedSql, WritesDuringARead) {
    for (int i = 0; i < 50; ++i)
        run("insert into tryhma (nro, vero) values (:n, 1)", {{"n", i}});
    const auto read = db->prepare("select nro from tryhma order by nro");
    QList<qint64> seen;
    while (read->step()) {
        seen.append(read->value(0).toLongLong());
        run("update tryhma set vero = 2 where nro = :n", {{"n", seen.last()}});
        run("delete from tryhma where nro = :n", {{"n", seen.last() - 10}});
    }
    ASSERT_EQ(seen.size(), 50);
    for (qint64 i = 0; i < 50; ++i)
        EXPECT_EQ(seen[i], i);
    EXPECT_EQ(rows("select count(*), min(nro), min(vero) from tryhma"), QStringList{"10|40|2"});
}

TEST_F(EmbeddedSql, OrderByFollowsTheKeysAndNotTheInsertion) {
    for (const char* name : {"b", "Ö", "a", "Š", "z", "€", "ä", "B"})
        run("insert into toimittaja (tunnus, nimi) values (:t, :t)", {{"t", text(name)}});
    const QStringList byCode{"B", "a", "b", "z", text("€"), text("Š"), text("Ö"), text("ä")};
    EXPECT_EQ(rows("select tunnus from toimittaja order by tunnus"), byCode);
    EXPECT_EQ(rows("select nimi from toimittaja order by nimi"), byCode);
    QStringList backwards(byCode.rbegin(), byCode.rend());
    EXPECT_EQ(rows("select tunnus, nimi from toimittaja order by tunnus desc").first(),
              text("ä|ä"));
    EXPECT_EQ(rows("select tunnus from toimittaja order by tunnus desc"), backwards);
}
