// zavdb as a program: companies made, listed, taken off the list; what is refused leaves no trace.

#include "data/dictionary/tbl_res_reader.h"
#include "tests/tools/zavdb_program.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace {

using test::ZavdbProgram;

TEST_F(ZavdbProgram, ACompanyIsMadeListedForgottenAndAddedAgain) {
    EXPECT_EQ(done({"list"}), QByteArray());
    EXPECT_EQ(done({"create", "Yhtiö", "a/b"}), QByteArray());
    const QByteArray listed = "Yhtiö\t" + QDir::toNativeSeparators(path("a/b")).toUtf8() + "\n";
    EXPECT_EQ(done({"list"}), listed);
    EXPECT_TRUE(done({"tables", "yhtiö"}).simplified().contains("HINTATASO 9 HR 0"));
    EXPECT_TRUE(done({"check", "Yhtiö"}).contains("30 tables"));
    done({"forget", "Yhtiö"});
    EXPECT_EQ(done({"list"}), QByteArray());
    EXPECT_TRUE(QFile::exists(path("a/b/YRITYS.ZDB")));
    done({"add", "Yhtiö", "a/b"});
    EXPECT_EQ(done({"list"}), listed);
    // the new company's nine price levels, as a row each
    EXPECT_EQ(done({"sql", "Yhtiö", "select Nro, Nimi from HINTATASO where Nro > 7"}),
              QByteArray("Nro,Nimi\r\n8,Hinta 8\r\n9,Hinta 9\r\n"));
}

TEST_F(ZavdbProgram, TablesCanBeLeftOut) {
    done({"create", "A", "a", "--without", "myymalahinnat", "--without", "HR", "--without", "hr"});
    const QByteArray tables = done({"tables", "A"});
    EXPECT_FALSE(tables.contains("MYYMALAHINNAT"));
    EXPECT_FALSE(tables.contains("HR "));
    EXPECT_TRUE(tables.contains("TUOTE "));
    EXPECT_EQ(done({"sql", "A", "select xf$name from x$file where xf$name='MYYMALAHINNAT'"}),
              QByteArray("Xf$Name\r\n"));
    done({"check", "A"});
}

TEST_F(ZavdbProgram, WhatIsRefusedLeavesNothingBehind) {
    done({"create", "Taken", "taken"});
    file("plain", "no folder");
    QDir().mkpath(path("foreign"));
    file("foreign/YRITYS.ZDB", "something else entirely");
    const QByteArray list = done({"list"});
    const struct {
        QStringList command;
        QStringList words;
    } cases[] = {
        {{"create", "taken", "new"}, {"Taken", "already"}},
        {{"create", "New", "taken"}, {"taken", "holds a company"}},
        {{"create", "New", "foreign"}, {"foreign", "holds a company"}},
        {{"create", "New", "plain"}, {"plain"}},
        {{"create", "New", "plain/below"}, {"plain"}},
        {{"create", "", "new"}, {"name"}},
        {{"create", "a/b", "new"}, {"a/b"}},
        {{"create", "New", ""}, {"folder"}},
        {{"add", "New", ""}, {"folder"}},
        {{"copy", "Taken", "New", ""}, {"folder"}},
        {{"create", "New", "new", "--without", "tuote"}, {"TUOTE"}},
        {{"create", "New", "new", "--without", "X$Index"}, {"X$Index"}},
        {{"create", "New", "new", "--without", "NOSUCH"}, {"NOSUCH"}},
        {{"demo", "Taken", "new"}, {"Taken"}},
        {{"demo", "New", "taken"}, {"taken"}},
        {{"add", "New", "new"}, {"new"}},
        {{"add", "New", "foreign"}, {"foreign"}},
        {{"add", "TAKEN", "taken"}, {"Taken"}},
        {{"forget", "Nobody"}, {"Nobody"}},
        {{"tables", "Nobody"}, {"Nobody"}},
        {{"check", "Nobody"}, {"Nobody"}},
        {{"fields", "Taken", "NOSUCH"}, {"NOSUCH"}},
        {{"export", "Taken", "NOSUCH"}, {"NOSUCH"}},
        {{"export", "Taken", "TUOTE", "nowhere/x.csv"}, {"nowhere/x.csv"}},
        {{"backup", "Taken", "plain"}, {"plain", "exists"}},
        {{"backup", "Taken", "nowhere/copy"}, {"nowhere"}},
    };
    for (const auto& c : cases)
        refused(c.command, c.words);
    EXPECT_EQ(done({"list"}), list);
    EXPECT_FALSE(QFile::exists(path("new")));
    EXPECT_EQ(
        QDir(path("foreign")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
        QStringList{"YRITYS.ZDB"});
}

TEST_F(ZavdbProgram, WrongUsageIsToldApart) {
    const QStringList cases[] = {{},
                                 {"nosuch"},
                                 {"create", "A"},
                                 {"create", "A", "b", "c"},
                                 {"create", "A", "b", "--nosuch"},
                                 {"demo", "A", "b", "--products", "many"},
                                 {"demo", "A", "b", "--products", "0"},
                                 {"demo", "A", "b", "--seed", "-1"},
                                 {"list", "more"},
                                 {"sql", "A"}};
    for (const QStringList& arguments : cases) {
        const test::ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(u' ').toStdString();
        EXPECT_EQ(result.out, QByteArray());
        EXPECT_NE(result.err, QByteArray());
    }
    EXPECT_FALSE(QFile::exists(path("b")));
    // help and version answer on standard output, also where no UTF-8 locale is set
    for (const QStringList& arguments :
         {QStringList{"--help"}, QStringList{"--version"}, QStringList{"import", "--help"}})
        EXPECT_NE(done(arguments, {"LC_ALL=C"}), QByteArray());
}

TEST_F(ZavdbProgram, ABackupIsACompanyOfItsOwn) {
    done({"create", "A", "a"});
    const QString rows = file("rows.csv", "luokka,Prosentti\n1,24\n");
    done({"import", "A", "ALVKANTA", rows});
    QDir().mkpath(path("copy"));
    done({"backup", "A", path("copy/YRITYS.ZDB")});
    done({"sql", "A", "delete from ALVKANTA"});
    done({"add", "Copy", "copy"});
    done({"check", "Copy"});
    EXPECT_EQ(done({"sql", "Copy", "select luokka, Prosentti from ALVKANTA"}),
              QByteArray("luokka,Prosentti\r\n1,24\r\n"));
    EXPECT_EQ(done({"sql", "A", "select count(*) as n from ALVKANTA"}), QByteArray("n\r\n0\r\n"));
}

#ifndef _WIN32
TEST_F(ZavdbProgram, NothingIsWritableForEverybody) {
    const mode_t before = ::umask(0);
    done({"create", "A", "a/b"});
    done({"copy", "A", "Copy", "copy"});
    done({"backup", "A", "backup.zdb"});
    ::umask(before);
    for (const char* name : {"a", "a/b", "a/b/YRITYS.ZDB", "a/b/YRITYS.ZDB-lock", "copy",
                             "copy/YRITYS.ZDB", "backup.zdb", "config/Taksavaihe"}) {
        const QFileInfo info(path(name));
        EXPECT_TRUE(info.exists()) << name;
        EXPECT_FALSE(info.permissions() & QFile::WriteOther) << name;
    }
    EXPECT_TRUE(QFileInfo(path("copy/YRITYS.ZDB")).permissions() & QFile::WriteGroup);
}
#endif

TEST_F(ZavdbProgram, ADamagedDatabaseIsAnErrorOfEveryCommand) {
    done({"create", "A", "a"});
    QFile database(path("a/YRITYS.ZDB"));
    ASSERT_TRUE(database.resize(database.size() / 2));
    for (const QStringList& command :
         {QStringList{"check", "A"}, QStringList{"backup", "A", "copy"}}) {
        const test::ProgramResult result = run(command);
        EXPECT_EQ(result.status, 1) << command.constFirst().toStdString();
        EXPECT_NE(result.out + result.err, QByteArray());
    }
}

TEST_F(ZavdbProgram, FieldsShowsNumbersPlacesMasksAndKeys) {
    done({"create", "A", "a"});
    const QString alv = QString::fromUtf8(done({"fields", "A", "alvkanta"})).simplified();
    EXPECT_TRUE(alv.contains("1 luokka integer 4 0 4 INTEGER")) << alv.toStdString();
    EXPECT_TRUE(alv.contains("6 EiMatkustajamyyntia boolean 4 131 1 BIT 1"));
    EXPECT_TRUE(alv.contains("record length 152 key 0 unique luokka"));
    // a mask on a string, which only the compiled dictionary tells
    EXPECT_TRUE(QString::fromUtf8(done({"fields", "A", "ASIAKAS"}))
                    .simplified()
                    .contains("77 Projekti string 23 697 24 LSTRING 1"));
    // no compiled dictionary: the catalogue's own words
    const QString orders = QString::fromUtf8(done({"fields", "A", "MT"})).simplified();
    EXPECT_TRUE(orders.contains("4 TilausPvm date 4 49 4 DATE"));
    EXPECT_TRUE(orders.contains("key 1 duplicates Asiakas, Numero"));
    EXPECT_TRUE(QString::fromUtf8(done({"fields", "A", "TUOTE"}))
                    .simplified()
                    .contains("key 5 duplicates NIMI (ignoring case)"));
}

TEST_F(ZavdbProgram, ADictionaryFileIsReadBack) {
    done({"create", "A", "a"});
    done({"dictionary", "A", "MT", "ASIAKAS", "own.dictionary"});
    data::TTblResReader::setModuleFile(path("own.dictionary"));
    data::TTblResBase orders;
    data::TTblResBase customers;
    EXPECT_TRUE(data::TTblResReader::ReadResource(QStringLiteral("mt"), orders));
    EXPECT_TRUE(data::TTblResReader::ReadResource(QStringLiteral("ASIAKAS"), customers));
    data::TTblResReader::setModuleFile(QString());
    ASSERT_EQ(orders.FFields.size(), 11U);
    EXPECT_EQ(orders.FFields[5].name, QStringLiteral("Toimituspaiva"));
    EXPECT_EQ(orders.FFields[5].offset, 55);
    EXPECT_EQ(orders.FFields[5].storage, data::Storage::Date);
    ASSERT_EQ(customers.FFields.size(), 102U);
    EXPECT_EQ(customers.FFields[76].mask, 1);
}

}  // namespace
