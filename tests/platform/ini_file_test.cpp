#include "platform/ini_file.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "company/batch_list.h"
#include "tests/support/company_folder.h"

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

using platform::IniFile;
using test::str;

namespace {

TEST(IniFile, ReadsHandWrittenFiles) {
    // bytes, section, key, value in UTF-8 (nullptr: no such key)
    const char* const cases[][4] = {
        {"[A]\nx=1\n", "A", "x", "1"},
        {"[A]\r\nx=1", "a", "X", "1"},
        {"[A]\rx=1\ry=2\r", "A", "y", "2"},
        {"\xEF\xBB\xBF[A]\nx=1\n", "A", "x", "1"},
        {"  [ A ]  ; note\n\tx =\t 1 2 \t\n", "A", "x", "1 2"},
        {"[A]\nx=\n", "A", "x", ""},
        {"[A]\nx=a=b;c#d\n", "A", "x", "a=b;c#d"},
        {"[A]\nx=\"abc\"\n", "A", "x", "\"abc\""},
        {"[A]\nx=\" abc\"\n", "A", "x", " abc"},
        {"[A]\n;x=1\n#x=2\nx\n=3\n", "A", "x", nullptr},
        {"[A]\nx=1\nX=2\n[a]\nx=3\ny=4\n", "A", "x", "1"},
        {"[A]\nx=1\n[B]\nz=9\n[a]\ny=4\n", "A", "y", nullptr},  // the first section counts
        {"x=0\n[A]\ny=1\n", "A", "x", nullptr},
        {"[\xC4\xC4RI]\n\xF6=\xE5\x80\n", "ääri", "Ö", "å€"},             // Windows-1252
        {"[\xC3\x84RI]\n\xC3\xB6=\xC5\x93\xCE\xA9\n", "äri", "Ö", "œΩ"},  // UTF-8
        {"[A]\nx=\xC3\xA4 \xE4\n", "A", "x", "Ã¤ ä"},  // one bad byte: no UTF-8 at all
        {"", "A", "x", nullptr},
    };
    for (const auto& [bytes, section, key, expected] : cases) {
        const auto value = IniFile::parse(bytes, {}).value(str(section), str(key));
        EXPECT_EQ(value, expected ? std::optional(str(expected)) : std::nullopt) << bytes;
    }
}

TEST(IniFile, WritesWindows1252UnlessATextNeedsMore) {
    const std::pair<const char*, QByteArray> cases[] = {
        {"Kevät 5 €", "Kev\xE4t 5 \x80"},
        {"Ω ä", "Ω ä"},  // not in Windows-1252: all of it UTF-8
        {"Ã¤", "Ã¤"},    // C3 A4 would be read as UTF-8 ä
        {"abc", "abc"},
    };
    for (const auto& [value, bytes] : cases) {
        IniFile ini = IniFile::parse("[A]\nx=0\n", {});
        ini.setValue(str("A"), str("x"), str(value));
        EXPECT_EQ(ini.toBytes(), "[A]\nx=" + bytes + "\n") << value;
    }
}

TEST(IniFile, EverythingElseSurvivesAChange) {
    const QByteArray before =
        "; head\r\nloose=1\r\n\r\n[ One ]\r\n  a = 1 ; kept\r\nno key here\r\n# why b\r\nB=2\r\n"
        "\r\n[Two]\r\nx=\" q \"\r\n; tail";
    IniFile ini = IniFile::parse(before, {});
    EXPECT_EQ(ini.toBytes(), before + "\r\n");
    EXPECT_EQ(ini.malformedLine(), 6);
    EXPECT_EQ(ini.malformedLine(str("ONE")), 6);
    EXPECT_EQ(ini.malformedLine(str("Two")), 0);
    ini.setValue(str("one"), str("b"), str("3"));
    ini.setValue(str("ONE"), str("c"), str("4"));
    ini.setValue(str("Two"), str("X"), str(" q "));  // unchanged value: the line stays
    ini.setValue(str("Three"), str("y"), str("5"));
    const QByteArray after =
        "; head\r\nloose=1\r\n\r\n[ One ]\r\n  a = 1 ; kept\r\nno key here\r\n# why b\r\nB=3\r\n"
        "c=4\r\n\r\n[Two]\r\nx=\" q \"\r\n; tail\r\n\r\n[Three]\r\ny=5\r\n";
    EXPECT_EQ(ini.toBytes(), after);
    EXPECT_EQ(ini.sections(), QStringList({str("One"), str("Two"), str("Three")}));
    EXPECT_EQ(ini.keys(str("one")), QStringList({str("a"), str("B"), str("c")}));

    EXPECT_TRUE(ini.removeKey(str("One"), str("b")));
    EXPECT_FALSE(ini.removeKey(str("One"), str("b")));
    EXPECT_TRUE(ini.removeSection(str("two")));
    EXPECT_FALSE(ini.removeSection(str("two")));
    EXPECT_EQ(ini.toBytes(),
              "; head\r\nloose=1\r\n\r\n[ One ]\r\n  a = 1 ; kept\r\nno key here\r\n# why b\r\n"
              "c=4\r\n\r\n[Three]\r\ny=5\r\n");
}

TEST(IniFile, BrokenFilesAreRefusedByNameAndLine) {
    const struct {
        QByteArray bytes;
        const char* place;
        const char* finnish;
    } cases[] = {
        {QByteArray("[A]\nx=1\nb\0=", 11), "line 3", ": rivi 3: ei ole tekstitiedosto. "},
        {QByteArray("\xFF\xFE[\0A\0]\0", 8), "line 1", ": rivi 1: ei ole tekstitiedosto. "},
        {"[A]\nx=1\n[B\ny=2\n", "line 3",
         ": rivi 3: osan nimestä \"[B\" puuttuu lopusta hakasulku ]. "},
        {QByteArray(IniFile::kMaxSize + 1, 'x'), "too large", ": liian suuri asetustiedostoksi. "},
    };
    QTemporaryDir folder;
    const QString name = folder.filePath(str("rikki.INI"));
    for (const auto& [bytes, place, finnish] : cases) {
        test::writeFile(name, bytes);
        const data::DataError error = test::thrownBy([&] { IniFile::read(name); });
        EXPECT_EQ(error.kind(), data::ErrorKind::Damaged);
        EXPECT_EQ(error.table(), name);
        EXPECT_TRUE(error.detail().contains(str(place))) << error.what();
        EXPECT_EQ(error.finnish(),
                  str("Tiedot ovat vioittuneet: ") + name + str(finnish) +
                      str("Korjaa tiedosto tekstieditorilla tai palauta se varmuuskopiosta."));
    }
}

#ifndef Q_OS_WIN
TEST(IniFile, OnlyARegularFileIsReadAndOnlyAMissingOneIsEmpty) {
    QTemporaryDir folder;
    const QString noFile = str("se ei ole tavallinen tiedosto");
    const QString locked = folder.filePath(str("suljettu"));
    test::writeFile(folder.filePath(str("tiedosto")), "[A]\nx=1\n");
    ASSERT_TRUE(QDir().mkpath(locked));
    test::writeFile(locked + str("/a.INI"), "[A]\nx=1\n");
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.filePath(str("putki"))).constData(), 0600), 0);
    const std::pair<QString, QString> refused[] = {
        {folder.filePath(str("putki")), noFile},  // nobody will ever write into it
        {str("/dev/zero"), noFile},
        {locked, noFile},
    };
    for (const auto& file : refused) {
        const QString& name = file.first;
        const data::DataError error = test::thrownBy([&] { IniFile::read(name); });
        EXPECT_TRUE(error.finnish().contains(name + str(": ") + file.second)) << error.what();
    }
    EXPECT_TRUE(IniFile::read(folder.filePath(str("tiedosto/a.INI"))).sections().isEmpty());

    ASSERT_TRUE(QFile::setPermissions(
        folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther));
    ASSERT_TRUE(QFile::setPermissions(locked, QFile::Permissions()));
    const test::WithoutPrivileges nobody;
    const data::DataError error = test::thrownBy([&] { IniFile::read(locked + str("/a.INI")); });
    EXPECT_TRUE(error.finnish().contains(
        str("a.INI: käyttöoikeus puuttuu. Anna tälle käyttäjälle oikeus avata kansio")))
        << error.what();
}
#endif

TEST(IniFile, AFailedWriteNamesTheFileAndLeavesTheOldOne) {
    QTemporaryDir folder;
    IniFile ini;
    ini.setValue(str("A"), str("x"), str("1"));
    EXPECT_TRUE(IniFile::read(folder.filePath(str("none.ini"))).sections().isEmpty());
    const QString missing = folder.filePath(str("gone/a.ini"));
    EXPECT_EQ(test::thrownBy([&] { ini.write(missing); }).table(), missing);
    const QString taken = folder.filePath(str("taken.ini"));
    ASSERT_TRUE(QDir().mkpath(taken + str("/x")));
    EXPECT_THROW(ini.write(taken), data::DataError);
    EXPECT_THROW(IniFile::read(taken), data::DataError);
    EXPECT_TRUE(QDir(taken + str("/x")).exists());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList());
}

TEST(DefinitionsFile, TheBatchListIsReadWhereItIs) {
    const struct {
        bool writable;
        bool besideExists;
        bool ownExists;
        bool readsBeside;
    } cases[] = {
        {true, false, true, true},  // beside the program, where it would be saved
        {true, true, true, true},    {false, true, true, false},
        {false, true, false, true},  // the installation's list until the user saves one
        {false, false, true, false}, {false, false, false, false},
    };
    for (const auto& t : cases) {
        const QTemporaryDir program;
        const QTemporaryDir user;
        const QString beside = program.filePath(str("ALVMUUTOS.INI"));
        const QString own = user.filePath(str("ALVMUUTOS.INI"));
        if (t.besideExists)
            test::writeFile(beside, "");
        if (t.ownExists)
            test::writeFile(own, "");
        EXPECT_EQ(company::batchListToRead({program.path(), t.writable, user.path()}),
                  t.readsBeside ? beside : own);
    }
}

TEST(DefinitionsFile, KeepsTheBatchListAndForeignKeys) {
    QTemporaryDir folder;
    const QString name = folder.filePath(str("uusi/ALVMUUTOS.INI"));
    const company::BatchList list{str("Alv255"), QString(), str("Määritys [€]"), str(" Ω ")};
    company::writeBatchList(name, list);
    EXPECT_EQ(company::readBatchList(name), list);

    test::writeFile(name, "[Muu]\nx=1\n[asetukset]\nMAAR2=\xC4\xE4kk\xF6set\noma=2\n");
    EXPECT_EQ(company::readBatchList(name),
              (company::BatchList{QString(), str("Ääkköset"), QString(), QString()}));
    company::writeBatchList(name, {str("a"), str("b"), QString(), QString()});
    EXPECT_EQ(test::fileBytes(name),
              "[Muu]\nx=1\n[asetukset]\nMAAR2=b\noma=2\nmaar1=a\nmaar3=\nmaar4=\n");
}

}  // namespace
