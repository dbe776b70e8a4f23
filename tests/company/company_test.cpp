#include "company/company.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include "company/run_mark.h"
#include "platform/command_line.h"
#include "platform/text_order.h"
#include "platform/user_settings.h"
#include "tests/support/company_folder.h"

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

using namespace company;
using namespace platform;
using test::str;

namespace {

TEST(Company, FolderRule) {
    const char* const cases[][3] = {
        // folder, with '\', with '/'
        {"", "", ""},
        {"X", "X", "X"},
        {"C:", "C:\\", "C:/"},
        {"ab", "ab", "ab"},
        {"\\", "\\", "\\"},
        {"C:\\", "C:\\", "C:\\/"},
        {"a/b", "a/b\\", "a/b/"},
        {"/yritys", "/yritys\\", "/yritys/"},
        {"/yritys/", "/yritys/\\", "/yritys/"},
        {"\\\\palvelin\\ä\\", "\\\\palvelin\\ä\\", "\\\\palvelin\\ä\\/"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(withTrailingSeparator(str(c[0]), u'\\'), str(c[1])) << c[0];
        EXPECT_EQ(withTrailingSeparator(str(c[0]), u'/'), str(c[2])) << c[0];
    }
}

TEST(Company, OnlyTheCaseOfAToZIsIgnored) {
    EXPECT_TRUE(sameIgnoringAsciiCase(str("Äiti Az"), str("Äiti aZ")));
    EXPECT_FALSE(sameIgnoringAsciiCase(str("Äiti"), str("äiti")));
    EXPECT_FALSE(sameIgnoringAsciiCase(str("[a"), str("{a")));  // 0x20 apart, but not letters
    EXPECT_FALSE(sameIgnoringAsciiCase(str("a"), str("ab")));
}

TEST(Company, NamesAreSortedInFinnishOrder) {
    QStringList names = str("Öljy äiti Zeta Åbo alfa Beta").split(u' ');
    sortInFinnishOrder(names);
    EXPECT_EQ(names.join(u' '), str("alfa Beta Zeta Åbo äiti Öljy"));
}

TEST(CommandLine, SwitchesByPlaceAndCase) {
    setParameters({str("-unidacdebug"), str("Yritys"), str("/e"), str("-EP")});
    EXPECT_TRUE(hasSwitch(str("/E")));
    EXPECT_TRUE(hasSwitch(str("/ep")));
    EXPECT_FALSE(hasSwitch(str("/U")));
    EXPECT_TRUE(hasSwitch(str("/UNIDACDEBUG")));
    EXPECT_FALSE(hasSwitchAfterFirst(str("/UNIDACDEBUG")));
    EXPECT_TRUE(hasSwitchAfterFirst(str("/E")));
    setParameters({});
    EXPECT_FALSE(hasSwitchAfterFirst(str("/E")));
}

TEST(RunMark, OnlyTheProgramsOwnNameWrites) {
    EXPECT_TRUE(programWritesMark(str("TaksaVaihe.EXE")));
    EXPECT_TRUE(programWritesMark(str("taksavaihe")));
    for (const char* name : {"", "taksavaihe2.exe", "taksavaihe.com", "koe.exe", "taksavaihe.exe "})
        EXPECT_FALSE(programWritesMark(str(name))) << name;
}

class AliasesTest : public ::testing::Test {
  protected:
    AliasesTest() { qputenv("XDG_CONFIG_HOME", m_config.path().toLocal8Bit()); }
    ~AliasesTest() override { qputenv("XDG_CONFIG_HOME", m_before); }
    QString settingsFile() const { return m_config.filePath(str("Taksavaihe/aliases.ini")); }

    QTemporaryDir m_config;
    const QByteArray m_before = qgetenv("XDG_CONFIG_HOME");
};

TEST_F(AliasesTest, ReplacesAndRemovesInAnyCaseOfAToZ) {
    for (const char* name : {"Äijän", "demo", "General"})
        storeAlias({str(name), str("/data"), {}, str("omistaja")});
    EXPECT_EQ(findAlias(str("DEMO"))->name, str("demo"));
    EXPECT_EQ(findAlias(str("General"))->ownerName, str("omistaja"));
    EXPECT_FALSE(findAlias(str("äijän")));
    storeAlias({str("Demo"), str("/uusi"), {}, {}});
    EXPECT_EQ(aliasNames(), QStringList({str("Demo"), str("General"), str("Äijän")}));
    EXPECT_EQ(findAlias(str("demo"))->physicalName, str("/uusi"));
    EXPECT_TRUE(findAlias(str("demo"))->ownerName.isEmpty());
    EXPECT_TRUE(removeAlias(str("dEMO")));
    EXPECT_FALSE(removeAlias(str("demo")));
    EXPECT_FALSE(findAlias(str("demo")));
}

#ifndef Q_OS_WIN
// Hand-written values are read literally and survive a save.
TEST_F(AliasesTest, KeepsAHandWrittenFile) {
    const char* const values[][2] = {{"/srv/a,b", "/srv/a,b"},
                                     {"Server=h;Port=1583", "Server=h;Port=1583"},
                                     {"\"Server=h;Port=1583\"", "Server=h;Port=1583"},
                                     {"\"C:\\oma\\\"", "C:\\oma\\"},
                                     {"Driver=\"a;b\";Port=1", "Driver=\"a;b\";Port=1"},
                                     {"\"a\" and \"b\"", "\"a\" and \"b\""},
                                     {"C:\\oma\\Kauppa", "C:\\oma\\Kauppa"},
                                     {"C:\\\\oma", "C:\\oma"},
                                     {"100 % ä # x", "100 % ä # x"},
                                     {"@a", "@a"},
                                     {"@@a", "@a"}};
    const char* const names[] = {"Iso Kauppa Äijä", "a.b-c_d", "50% alv", "%C4%20%U20AC"};
    const char* const meant[] = {"Iso Kauppa Äijä", "a.b-c_d", "50% alv", "Ä €", "Oma osasto"};
    QDir().mkpath(userSettingsFolder());
    for (const auto& [written, value] : values) {
        QByteArray text("; oma huomautus\n[Engine]\nClientLibrary=/opt/lib,1.so\n\n[Aliases]\n");
        for (const QByteArray name : names)
            text += name + "\\PhysicalName=" + written + '\n' + name +
                    "\\odbcattributes = " + written + '\n';
        text += QByteArray("[Aliases\\Oma osasto]\nPhysicalName=") + written +
                "\nOdbcAttributes=" + written + '\n';
        test::writeFile(settingsFile(), text);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(aliasNames().size(), 5 + round);
            for (const char* name : meant) {
                const auto alias = findAlias(str(name));
                ASSERT_TRUE(alias) << name;
                EXPECT_EQ(alias->physicalName, str(value)) << name;
                EXPECT_EQ(alias->odbcAttributes, str(value)) << name;
            }
            EXPECT_EQ(engineSetting(str("ClientLibrary")), str("/opt/lib,1.so"));
            storeAlias({str("uusi"), str(value), {}, {}});
            EXPECT_EQ(findAlias(str("uusi"))->physicalName, str(value));
        }
        EXPECT_TRUE(test::fileBytes(settingsFile()).startsWith("; oma huomautus\n[Engine]\n"));
        EXPECT_TRUE(removeAlias(str("oma osasto")));
        EXPECT_FALSE(findAlias(str("Oma osasto")));
    }
}

// Earlier versions wrote the file with QSettings; other programs may still read it that way.
TEST_F(AliasesTest, FileIsExchangedWithQSettings) {
    const char* const texts[] = {
        "Äijän Öljy & Rauta",         "a,b;c=d",    "a;b", " reunoilla ",          "\"a\" \\ b\\",
        "100 %20 € \xF0\x9F\x98\x80", "@Invalid()", "@@x", "rivi\nrivi\t\x01\x66", "[x] #y"};
    const auto key = [](const QString& name) {
        return str("Aliases/") + name + str("/PhysicalName");
    };
    int number = 0;
    for (const char* text : texts) {
        const QString theirs = QStringLiteral("Koe %1 äÄ%=.\"€").arg(++number);
        const QString ours = QStringLiteral("Oma %1 General [ä]").arg(number);
        QSettings(settingsFile(), QSettings::IniFormat).setValue(key(theirs), str(text));
        ASSERT_TRUE(findAlias(theirs)) << text;
        EXPECT_EQ(findAlias(theirs)->physicalName, str(text));
        storeAlias({ours, str(text), str(text), {}});
        EXPECT_EQ(findAlias(ours)->localFilePath, str(text));
        for (const QString& name : {ours, theirs})
            EXPECT_EQ(QSettings(settingsFile(), QSettings::IniFormat).value(key(name)).toString(),
                      str(text));
    }
    EXPECT_EQ(aliasNames().size(), 2 * number);
}

TEST_F(AliasesTest, OnlyTheUserMayReadTheFile) {
    const mode_t before = ::umask(0);
    storeAlias({str("eka"), str("/a"), {}, {}, {}, {}, {}, str("salainen")});
    const auto own = QFile::ReadOwner | QFile::WriteOwner;
    const auto rights = [](const QString& name) {
        return QFileInfo(name).permissions() &
               ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
    };
    EXPECT_EQ(rights(settingsFile()), own);
    EXPECT_EQ(rights(userSettingsFolder()), own | QFile::ExeOwner);
    QFile(settingsFile()).setPermissions(own | QFile::ReadGroup | QFile::ReadOther);
    storeAlias({str("toka"), str("/a"), {}, {}});
    EXPECT_EQ(rights(settingsFile()), own);
    ::umask(before);
}

TEST_F(AliasesTest, TwoProgramsRegisterAtOnce) {
    test::inTwoProcesses(40, [](const QString& who, int number) {
        storeAlias({who + QString::number(number), str("/a"), {}, {}});
    });
    EXPECT_EQ(aliasNames().size(), 80);
}
#endif

TEST_F(AliasesTest, BadNamesAreRefused) {
    for (const char* name : {"", "  ", "a/b", "..\\a", ".", "..", "/E", "-U", " a", "a ", "a\nb",
                             "a\x7F", "\xC2\x85"}) {
        EXPECT_FALSE(aliasNameProblem(str(name)).isEmpty()) << name;
        EXPECT_FALSE(aliasNameProblemFinnish(str(name)).isEmpty()) << name;
        EXPECT_THROW(storeAlias({str(name), str("/a"), {}, {}}), data::DataError) << name;
    }
    EXPECT_FALSE(aliasNameProblem(QString(81, u'a')).isEmpty());
    EXPECT_TRUE(aliasNameProblem(QString(80, u'ä')).isEmpty());
    EXPECT_TRUE(aliasNames().isEmpty());
}

TEST_F(AliasesTest, ADamagedFileIsNamedAndLeftAlone) {
    const auto store = [] { storeAlias({str("y"), str("/b"), {}, {}}); };
    ASSERT_TRUE(QDir().mkpath(userSettingsFolder()));
    const QByteArray bytes("[Aliases]\nx\\PhysicalName=/a\n\xFF\x01garbage\n");
    test::writeFile(settingsFile(), bytes);
    const data::DataError error = test::thrownBy(store);
    EXPECT_EQ(error.table(), settingsFile());
    EXPECT_EQ(error.kind(), data::ErrorKind::Damaged);
    EXPECT_THROW(aliasNames(), data::DataError);
    EXPECT_EQ(test::fileBytes(settingsFile()), bytes);

    ASSERT_TRUE(QFile::remove(settingsFile()) && QDir().mkpath(settingsFile()));
    EXPECT_THROW(findAlias(str("x")), data::DataError);
    EXPECT_THROW(store(), data::DataError);
}

}  // namespace
