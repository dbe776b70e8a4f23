#include <QFile>

#include "data/clock.h"
#include "data/sql/uni_query.h"
#include "tests/engines/embedded/fixture.h"

using namespace data;
using test::thrownBy;

namespace {

class EmbeddedSql : public test::EmbeddedCompany {
  protected:
    /// Runs lines "STATEMENT => RESULT": rows joined by "; ", the number of rows written, or "!"
    /// and words of the error. A line starting with two blanks continues the previous one.
    void script(const char* text) {
        for (const QString& line : QString(text).replace("\n  ", " ").split('\n')) {
            SCOPED_TRACE(line.toStdString());
            const QString sql = line.section(" => ", 0, 0);
            const QString expected = line.section(" => ", 1).simplified();
            try {
                const bool reads = !db->prepare(sql)->columns().empty();
                const QString result = reads ? rows(sql).join("; ") : QString::number(run(sql));
                EXPECT_TRUE(!line.contains(" => ") || result == expected) << result.toStdString();
            } catch (const DataError& error) {
                EXPECT_TRUE(expected.startsWith('!') && error.english().contains(expected.mid(1)))
                    << error.english().toStdString();
            }
        }
    }
};

}  // namespace

TEST_F(EmbeddedSql, CatalogueIsReadBySqlWhateverTheCase) {
    // INI: its fields by number, with storage codes, offsets and lengths. Its key: three segments
    // that allow duplicates and changes; all but the last are followed by another. Bits by their
    // position in the byte.
    script(R"(SELECT xf$name FROM X$File WHERE Xf$Name = 'myymalahinnat'; => MYYMALAHINNAT
select count(*) from x$file where xf$name='PUUTTUU' => 0
select xe$name, xe$datatype, xe$offset, xe$size from x$file, x$field where xe$file = xf$id
  and xf$name = 'ini' order by xe$id => IniNimi|11|0|41; Sektio|11|41|61; Avain|11|102|61; Data|12|163|1024
select xi$number, xi$part, xi$flags from x$index, x$file where xi$file = xf$id
  and xf$name = 'INI' order by xi$part => 0|0|19; 0|1|19; 0|2|3
select count(*) from x$file where xf$flags = 16 => 3
select xe$datatype, xe$dec from x$field where xe$name = 'LISUKKEENA' => 16|5)");
    EXPECT_EQ(db->tableNames().size(), static_cast<int>(allTableSources().size()));
}

TEST_F(EmbeddedSql, TopBecomesLimitOnlyInFront) {
    script(R"(insert into ini values ('select top 1 x', 'a;b', '', '')
insert into ini (ininimi) values ('toinen') => 1
 SELECT TOP 1 ininimi FROM ini -- viimeinen; huomautus => select top 1 x
select ininimi from ini where ininimi = 'select top 1 x' and sektio='a;b' ;  => select top 1 x)");
}

TEST_F(EmbeddedSql, FunctionsFollowTheProductsClock) {
    const Clock::Override clock([] { return QDateTime(QDate(2024, 9, 1), QTime(7, 8, 9)); });
    script(R"(select CURDATE(), curtime(), NOW() => 2024-09-01|07:08:09|2024-09-01 07:08:09
insert into TRYHMA (nro, nimi, vero) values (1, 'Maito', 2), (2, 'Liha', 3)
UPDATE TRYHMA SET VERO = 7, MUUTOSPVM = CURDATE(), MUUTOSKLO = CURTIME() WHERE VERO = 2 => 1
select nro, vero, muutospvm, muutosklo from tryhma order by nro => 1|7|2024-09-01|07:08:09; 2|3||00:00:00
update tryhma set muutospvm = '2024-02-30' => !not a date
select typeof(round(7)), typeof(round('2.5')), typeof(floor(2)), round(null, 2), floor(null) => real|real|real|NULL|NULL)");
}

// Other conditions on keys are drawn at random in planner_test.cpp.
TEST_F(EmbeddedSql, NumbersAndTextsCompareAsInSqlAndOrderFollowsTheColumn) {
    run("insert into toimittaja (tunnus, nimi) values ('b','b'), ('Ö','Ö'), ('a','a'), ('Š','Š'), "
        "('z','z'), ('€','€'), ('ä','ä'), ('B','B')");
    script(R"(insert into tuote (numero, nimi) values ('7','x'), ('07','y'), ('8','z')
select nimi from tuote where numero = 7 => x
insert into mt (numero, asiakas) values (7, 1)
select nimi from tuote, mt where tuote.numero = mt.numero order by nimi => x; y
select tunnus from toimittaja order by tunnus desc => ä; Ö; Š; €; z; b; a; B
select nimi from toimittaja order by nimi => B; a; b; z; €; Š; Ö; ä)");
}

TEST_F(EmbeddedSql, UpdatesMeetTheirRowsOnce) {
    // The purchase price is single precision and reads back as that single.
    script(
        R"(insert into webkliitos (taulu, tunniste, tyyppi) values ('T','1','M'), ('T','1','P'), ('T','1','L')
update webkliitos set tyyppi='X' where taulu='T' and tunniste='1' and tyyppi='P' => 1
select tyyppi from webkliitos where taulu='T' and tunniste='1' => M; X; L
insert into tryhma (nro) values (1), (2), (3)
update tryhma set nro = nro + 100 where nro > 0 => 3
select nro from tryhma order by nro => 101; 102; 103
delete from tryhma where nro in (101, 103) => 2
select nro from tryhma => 102
insert into asale (tuote, hinta, ostohinta) values ('p1', 12.5, 0.1)
select hinta, ostohinta = 0.1, ostohinta from asale => 12.5|0|0.10000000149011612
insert into maaraale (numero) values (1), (2), (3), (4), (5)
insert into tuote (numero, maaraale) values ('p1', 2), ('p2', 5)
select numero from maaraale where exists (select numero from tuote where tuote.maaraale = maaraale.numero)
  order by numero => 2; 5)");
}

TEST_F(EmbeddedSql, BadValueChangesNothing) {
    // The second row of the first update fails: the first keeps its value.
    script(R"(insert into tryhma (nro, nimi, vero) values (1,'A',1), (2,'B',2), (3,'C',3)
insert into mtrivi (tilausnro, rivinro, ostovero) values (1,1,1), (1,2,200 - 100)
update mtrivi set ostovero = ostovero + rivinro * 20 => !MTRIVI: field OstoVero, value "140"
update mtrivi set verokanta = 1.5 => !MTRIVI: field Verokanta, value "1.5"
update mtrivi set verokanta = 'abc' => !MTRIVI: field Verokanta, value "abc"
update tryhma set nimi = '12345678901234567890123456789012345678901234567890' => !TRYHMA: field Nimi, value "1234567890
update tryhma set nimi = '中' => !TRYHMA: field Nimi, value "中
select rivinro, ostovero, verokanta from mtrivi order by rivinro => 1|1|0; 2|100|0
select nimi from tryhma order by nro => A; B; C
update tryhma set nro = 3 where nro >= 1 => !Nro "3"
select nro from tryhma order by nro => 1; 2; 3)");
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

TEST_F(EmbeddedSql, FieldsThatShareBytes) {
    // LISUKKEENA and BIT1_5 are bit 32 of the byte BIT1; a named bit wins over the byte.
    script(R"(insert into tuote (numero, lisukkeena) values ('a', 1)
insert into tuote (numero, bit1, lisukkeena) values ('b', 65, 1)
insert into tuote (numero, bit1) values ('c', 97)
select numero, bit1, bit1_0, bit1_5, lisukkeena, bit1_6 from tuote
  order by numero => a|32|0|1|1|0; b|97|1|1|1|1; c|97|1|1|1|1
update tuote set lisukkeena = 0 where numero = 'c' => 1
update tuote set bit1 = 2, bit1_0 = 1 where numero = 'b' => 1
select numero, bit1, bit1_5 from tuote where numero > 'a' order by numero => b|3|0; c|65|0
SELECT numero, nimi FROM TUOTE WHERE lisukkeena = 1; => a|)");
}

TEST_F(EmbeddedSql, UserSqlRestrictions) {
    for (const char* sql : {"select * from rec_TUOTE", "drop table tuote", "delete from rec_ini",
                            "pragma synchronous = off", "begin", "create table oma (a)",
                            "attach ':memory:' as m", "select * from sqlite_master"}) {
        EXPECT_NE(thrownBy([&] { run(sql); }).kind(), ErrorKind::Syntax) << sql;
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
    script(R"(/* */ with x(n) as (select count(*) from tryhma) select n from x => 0
with x(n) as (values (7)) insert into tryhma (nro) select n from x => 1
values (1), (2) => 1; 2
select from => !syntax error
 ;  => !syntax error
select 1; select 2 => !syntax error
select * from puuttuu => !no such table
select puuttuu from ini => !no such field)");
}

TEST_F(EmbeddedSql, ParametersAreFoundWhateverTheirCase) {
    const auto statement = db->prepare("select :Luku + :luku, ':ei', :toinen");
    EXPECT_EQ(statement->parameterNames(), (QStringList{"Luku", "toinen"}));
    statement->bind("LUKU", 2);
    EXPECT_EQ(thrownBy([&] { statement->bind("ei", 1); }).kind(), ErrorKind::NoSuchField);
    ASSERT_TRUE(statement->step());
    EXPECT_EQ(statement->value(0), Value(qint64{4}));
    EXPECT_FALSE(statement->value(2).isValid());
}

// Writes on the connection of an open result affect neither.
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
