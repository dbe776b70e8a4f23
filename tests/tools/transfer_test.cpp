// zavdb import, export and sql: what goes in comes out the same; what is refused changes nothing.

#include "tests/tools/zavdb_program.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

class Transfer : public test::ZavdbProgram {
  protected:
    void SetUp() override { done({"create", "A", "a"}); }

    void importRows(const char* table, const QByteArray& csv) {
        done({"import", "A", table, file("in.csv", csv)});
    }
    QByteArray exported(const char* table) { return done({"export", "A", table}); }
    QByteArray sql(const char* statement) { return done({"sql", "A", statement}); }
};

TEST_F(Transfer, HeadersInAnyCaseAndOrderAndASubset) {
    importRows("alvkanta",
               "\xEF\xBB\xBFPROSENTTI,Luokka,eimatkustajamyyntia,selite\n"
               "25.5,5,1,\"Yleinen \"\"uusi\"\", 25,5 %\"\n"
               "24,1,,Ämmä €\n"
               "\n"
               "0,-2,0,\r\n");
    EXPECT_EQ(exported("ALVKANTA"),
              QByteArray("luokka,Selite,Prosentti,KpTili,Kuittiteksti,EiMatkustajamyyntia,"
                         "FinvoiceAlvKoodi,ulosmaksu,TaxFreeRaja,Passiivinen\r\n"
                         "-2,,0,,,0,,0,0,0\r\n"
                         "1,Ämmä €,24,,,0,,0,0,0\r\n"
                         "5,\"Yleinen \"\"uusi\"\", 25,5 %\",25.5,,,1,,0,0,0\r\n"));
}

TEST_F(Transfer, EveryKindOfValueComesBack) {
    importRows("UUSIHINTA",
               "Tuote,Pvm,Hinta1,Hinta2,Myymala,AjoAika,KatePros1,KatePros2\n"
               "A-1,2024-02-29,12.9,-0.1,-2147483648,2024-07-01 12:34:56,0.1,16777217\n"
               "A-2,,1e3,0.30000000000000004,,,33.3,\n");
    EXPECT_EQ(sql("select Avain, Tuote, Pvm, Hinta1, Hinta2, Myymala, AjoAika from UUSIHINTA"),
              QByteArray("Avain,Tuote,Pvm,Hinta1,Hinta2,Myymala,AjoAika\r\n"
                         "1,A-1,2024-02-29,12.9,-0.1,-2147483648,2024-07-01 12:34:56\r\n"
                         "2,A-2,,1000,0.30000000000000004,0,\r\n"));
    // single precision: 0.1 reads back from its shortest form, 2^24 + 1 is not one of its values
    EXPECT_TRUE(exported("UUSIHINTA").contains(",0.1,16777216,"))
        << exported("UUSIHINTA").toStdString();

    importRows("INI",
               "IniNimi,Sektio,Avain,Data\n"
               "X.INI,Å,ö,\"line 1\r\nline 2, \"\"quoted\"\"\n\"\n"
               "X.INI,Å,ö, blanks \n");
    EXPECT_EQ(exported("INI"), QByteArray("IniNimi,Sektio,Avain,Data\r\n"
                                          "X.INI,Å,ö,\"line 1\r\nline 2, \"\"quoted\"\"\n\"\r\n"
                                          "X.INI,Å,ö, blanks \r\n"));
}

// What is exported, put back and exported again is the same file, for every table there is.
TEST_F(Transfer, ExportReplaceExportIsTheSameFile) {
    done({"demo", "D", "d", "--products", "150"});
    const QList<QByteArray> lines = done({"tables", "D"}).trimmed().split('\n');
    ASSERT_EQ(lines.size(), 30);
    for (const QByteArray& line : lines) {
        const QString table = QString::fromUtf8(line.left(line.indexOf(' ')));
        const QString first = path(table + "-1.csv");
        done({"export", "D", table, first});
        done({"import", "D", table, first, "--replace"});
        QFile before(first);
        ASSERT_TRUE(before.open(QIODevice::ReadOnly));
        EXPECT_EQ(done({"export", "D", table}), before.readAll()) << table.toStdString();
    }
    done({"check", "D"});
}

TEST_F(Transfer, WhatIsRefusedNamesThePlaceAndChangesNothing) {
    importRows("TUOTE", "NUMERO,NIMI,HINTA,RYHMA\n100,Yksi,10.5,1\n200,Kaksi,20,2\n");
    const QByteArray before = exported("TUOTE");
    const struct {
        QByteArray csv;
        QStringList words;
    } cases[] = {
        {"", {"header"}},
        {"NUMERO,NOSUCH\n1,2\n", {"line 1", "NOSUCH"}},
        {"NUMERO,HINTA,numero\n1,2,3\n", {"line 1", "numero", "twice"}},
        {"NUMERO,\n1,2\n", {"line 1"}},
        {"NUMERO,HINTA\n1,2\n3\n", {"line 3", "1 field"}},
        {"NUMERO,HINTA\n1,2,3\n", {"line 2", "3 fields"}},
        {"NUMERO\n1234567890123456789\n", {"line 2", "NUMERO", "1234567890123456789", "18"}},
        {"NUMERO,RYHMA\n1,1\n2,40000\n", {"line 3", "RYHMA", "40000"}},
        {"NUMERO,RYHMA\n1,1.5\n", {"line 2", "RYHMA", "1.5"}},
        {"NUMERO,HINTA\n1,\"12,50\"\n", {"line 2", "HINTA", "12,50"}},
        {"NUMERO,HINTA\n1,nan\n", {"line 2", "HINTA", "nan"}},
        {"NUMERO,TILAUSKOKO\n1,1e300\n", {"line 2", "TILAUSKOKO", "1e300"}},
        {"NUMERO,HinnastoByte\n1,200\n", {"line 2", "HinnastoByte", "200"}},
        {"NUMERO,Hinnastoon\n1,2\n", {"line 2", "Hinnastoon", "2"}},
        {"NUMERO,SaatavillaPvm\n1,2024-02-30\n", {"line 2", "SaatavillaPvm", "2024-02-30"}},
        {"NUMERO,VIIMSISOSTO\n1,30.8.2024\n", {"line 2", "VIIMSISOSTO", "30.8.2024"}},
        {"NUMERO,muutettutime\n1,25:00:00\n", {"line 2", "muutettutime", "25:00:00"}},
        {"NUMERO,NIMI\n1,\xCE\xB1\n", {"line 2", "NIMI", "\u03B1"}},
        {"NUMERO,NIMI\n1,a\n2,\xE4\n", {"line 3", "NIMI", "UTF-8"}},
        {"NUMERO,NIMI\n1,\"a\n", {"line 2", "quote"}},
        {"NUMERO,NIMI\n1,uusi\n100,taas\n", {"line 3", "NUMERO", "\"100\""}},
        {"NUMERO,NIMI\n1,a\n1,b\n", {"line 3", "NUMERO", "\"1\""}},
    };
    for (const auto& c : cases) {
        const QString name = file("bad.csv", c.csv);
        refused({"import", "A", "TUOTE", name}, QStringList{"bad.csv"} + c.words);
        EXPECT_EQ(exported("TUOTE"), before) << c.csv.toStdString();
    }
    // emptying the table is part of what is undone
    refused({"import", "A", "TUOTE", file("bad.csv", "NUMERO\n1\n1\n"), "--replace"}, {"line 3"});
    refused({"import", "A", "TUOTE", path("nosuch.csv")}, {"nosuch.csv"});
    EXPECT_EQ(exported("TUOTE"), before);
    done({"check", "A"});
}

TEST_F(Transfer, FieldsThatShareBytes) {
    // BIT1 holds the bits 1 (BIT1_0) to 128; LISUKKEENA is another name of BIT1_5 (32)
    importRows("TUOTE",
               "BIT1_0,NUMERO,BIT1\n"
               "1,both,6\n"     // 2 + 4, and the named bit
               "0,cleared,7\n"  // the named bit wins over the byte that holds it
               ",empty,7\n"     // so does its empty value
               "1,bit,0\n");
    importRows("TUOTE", "NUMERO,LISUKKEENA\nalone,1\n");
    importRows("TUOTE", "NUMERO,BIT1\nbyte,-128\n");
    EXPECT_EQ(sql("select NUMERO, BIT1, BIT1_0, BIT1_5, BIT1_7 from TUOTE order by NUMERO"),
              QByteArray("NUMERO,BIT1,BIT1_0,BIT1_5,BIT1_7\r\n"
                         "alone,32,0,1,0\r\n"
                         "bit,1,1,0,0\r\n"
                         "both,7,1,0,0\r\n"
                         "byte,-128,0,0,1\r\n"
                         "cleared,6,0,0,0\r\n"
                         "empty,6,0,0,0\r\n"));
    // a given number of an order is kept, whatever its second name says; 0 asks for the next one
    importRows("WINOT", "TilausNro,TilausNroApu,Tila\n70,,1\n");
    importRows("WINOT", "Tila,TilausNro\n2,0\n");
    importRows("WINOT", "Tila\n3\n");
    EXPECT_EQ(sql("select TilausNro, TilausNroApu, Tila from WINOT order by Tila"),
              QByteArray("TilausNro,TilausNroApu,Tila\r\n70,70,1\r\n71,71,2\r\n72,72,3\r\n"));
}

TEST_F(Transfer, TheCatalogueKeepsDescribingTheTables) {
    const QByteArray files = exported("X$File");
    const QString same = file("files.csv", files);
    const QString oneLess = file("less.csv", files.left(files.lastIndexOf('\n', -2) + 1));
    refused({"import", "A", "X$File", oneLess, "--replace"}, {"catalogue"});
    refused({"import", "A", "X$File", file("more.csv", "Xf$Id,Xf$Name\n999,UUSI\n")},
            {"catalogue", "UUSI"});
    refused({"import", "A", "X$Index", file("key.csv", "Xi$File,Xi$Field,Xi$Number\n1,1,9\n")},
            {"catalogue"});
    EXPECT_EQ(exported("X$File"), files);
    done({"import", "A", "X$File", same, "--replace"});
    EXPECT_EQ(exported("X$File"), files);
    done({"check", "A"});
}

TEST_F(Transfer, OneStatementOnTheCompanysTables) {
    importRows("ALVKANTA", "luokka,Prosentti\n1,24\n2,14\n3,10\n");
    EXPECT_EQ(sql("update ALVKANTA set Selite = 'x' where luokka > 1"), QByteArray("2 rows\n"));
    EXPECT_EQ(sql("delete from ALVKANTA where luokka = 3;"), QByteArray("1 rows\n"));
    EXPECT_EQ(sql("select luokka, null as n, Prosentti/10 as p, 'a,b' as t from ALVKANTA "
                  "order by luokka"),
              QByteArray("luokka,n,p,t\r\n1,,2.4,\"a,b\"\r\n2,,1.4,\"a,b\"\r\n"));
    const QByteArray before = exported("ALVKANTA");
    for (const char* statement :
         {"", "delete from ALVKANTA; delete from ALVKANTA", "drop table ALVKANTA",
          "create table X(a)", "pragma user_version = 9", "attach 'x.db' as x", "begin",
          "delete from rec_ALVKANTA", "delete from \"rec_ALVKANTA\"",
          "update ALVKANTA set nosuch = 1", "select * from NOSUCH", "selec 1",
          "update ALVKANTA set luokka = 1", "select * from ALVKANTA where luokka = :x", "vacuum",
          "vacuum into 'x.db'", "delete from ALVKANTA returning luokka"})
        refused({"sql", "A", statement}, {});
    EXPECT_FALSE(QFile::exists(path("x.db")));
    EXPECT_EQ(exported("ALVKANTA"), before);
    done({"check", "A"});
}

#ifndef _WIN32
TEST_F(Transfer, APipeIsWrittenIntoAndStaysOne) {
    importRows("ALVKANTA", "luokka,Prosentti\n1,24\n");
    const QByteArray name = QFile::encodeName(path("pipe"));
    ASSERT_EQ(::mkfifo(name.constData(), 0600), 0);
    const int pipe = ::open(name.constData(), O_RDWR | O_NONBLOCK);  // room for 64 KB
    ASSERT_GE(pipe, 0);
    for (QStringList command :
         {QStringList{"export", "A", "ALVKANTA"}, QStringList{"save", "A", "ALVKANTA"},
          QStringList{"dictionary", "A", "ALVKANTA"}}) {
        done(command + QStringList{path("pipe")});
        QByteArray bytes(65536, '\0');
        bytes.truncate(std::max<qsizetype>(0, ::read(pipe, bytes.data(), 65536)));
        done(command + QStringList{path("plain")});
        QFile plain(path("plain"));
        ASSERT_TRUE(plain.open(QIODevice::ReadOnly));
        EXPECT_EQ(bytes, plain.readAll()) << command.constFirst().toStdString();
        struct stat status = {};
        ASSERT_EQ(::lstat(name.constData(), &status), 0);
        EXPECT_TRUE(S_ISFIFO(status.st_mode)) << command.constFirst().toStdString();
    }
    ::close(pipe);
    refused({"export", "A", "ALVKANTA", path("a")}, {path("a"), "cannot be written"});
}

TEST_F(Transfer, OutputThatIsLostIsAnError) {
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no full device";
    for (const QStringList& command :
         {QStringList{"list"}, QStringList{"tables", "A"}, QStringList{"fields", "A", "TUOTE"},
          QStringList{"check", "A"}, QStringList{"sql", "A", "select Nro from HINTATASO"},
          QStringList{"sql", "A", "delete from HINTATASO where Nro > 99"},
          QStringList{"export", "A", "HINTATASO"}, QStringList{"--help"}}) {
        for (const char* redirection : {"> /dev/full", ">&-"}) {
            const test::ProgramResult result = run(command, {}, redirection);
            EXPECT_EQ(result.status, 1) << command.join(u' ').toStdString() << redirection;
            EXPECT_NE(result.err, QByteArray()) << command.join(u' ').toStdString() << redirection;
        }
    }
    done({"check", "A"});
}
#endif

}  // namespace
