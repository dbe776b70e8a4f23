#include "company/company.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <vector>

#include "company/aliases.h"
#include "company/run_mark.h"
#include "data/error.h"
#include "platform/command_line.h"
#include "platform/text_order.h"
#include "platform/user_settings.h"
#include "tests/support/company_folder.h"

#ifndef Q_OS_WIN
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace company;
using namespace platform;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

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
    EXPECT_FALSE(sameIgnoringAsciiCase(str("[a"), str("{a")));  // 0x20 apart, no letters
    EXPECT_FALSE(sameIgnoringAsciiCase(str("a"), str("ab")));
}

TEST(Company, NamesSortForFinnishEyes) {
    QStringList names{str("Öljy"), str("äiti"), str("Zeta"), str("Åbo"), str("alfa"), str("Beta")};
    sortForFinnishEyes(names);
    EXPECT_EQ(names, QStringList({str("alfa"), str("Beta"), str("Zeta"), str("Åbo"), str("äiti"),
                                  str("Öljy")}));
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
    void SetUp() override {
        m_before = qgetenv("XDG_CONFIG_HOME");
        useConfig(m_config.path());
    }
    void TearDown() override { qputenv("XDG_CONFIG_HOME", m_before); }
    static void useConfig(const QString& folder) {
        qputenv("XDG_CONFIG_HOME", folder.toLocal8Bit());
    }
    QString settingsFile() const { return m_config.filePath(str("Taksavaihe/aliases.ini")); }

    QTemporaryDir m_config;
    QByteArray m_before;
};

TEST_F(AliasesTest, NamesAndFoldersComeBackAndCaseIsIgnored) {
    const char* const names[] = {"Äijän Öljy & Rauta Oy", "demo", "100 % alv, \"[x]=;#\"",
                                 "General", "åÅ.%20"};
    for (const char* name : names)
        storeAlias(
            {str(name), str("/data/") + str(name), str("C:\\oma\\, \"a\""), str("omistaja")});
    ASSERT_EQ(aliasNames().size(), 5);
    for (const char* name : names) {
        const auto alias = findAlias(str(name));
        ASSERT_TRUE(alias) << name;
        EXPECT_EQ(alias->physicalName, str("/data/") + str(name));
        EXPECT_EQ(alias->localFilePath, str("C:\\oma\\, \"a\""));
        EXPECT_EQ(alias->ownerName, str("omistaja"));
    }
    EXPECT_EQ(findAlias(str("DEMO"))->name, str("demo"));
    EXPECT_FALSE(findAlias(str("äijän öljy & rauta oy")));

    storeAlias({str("Demo"), str("/uusi"), {}, {}});
    EXPECT_EQ(aliasNames().size(), 5);
    EXPECT_EQ(findAlias(str("demo"))->physicalName, str("/uusi"));
    EXPECT_TRUE(findAlias(str("demo"))->ownerName.isEmpty());
    EXPECT_TRUE(removeAlias(str("dEMO")));
    EXPECT_FALSE(removeAlias(str("demo")));
    EXPECT_FALSE(findAlias(str("demo")));
}

#ifndef Q_OS_WIN
// What a person writes into the file counts as it stands, whatever is saved afterwards.
TEST_F(AliasesTest, AHandWrittenFileLosesNothing) {
    const struct {
        const char* text;
        const char* value;
    } values[] = {{"/srv/a,b", "/srv/a,b"},
                  {"Server=h;Port=1583", "Server=h;Port=1583"},
                  {"\"Server=h;Port=1583\"", "Server=h;Port=1583"},
                  {"\"/srv/kauppa\"", "/srv/kauppa"},
                  {"\"C:\\oma\\\"", "C:\\oma\\"},
                  {"Driver=\"a;b\";Port=1", "Driver=\"a;b\";Port=1"},
                  {"\"a\" and \"b\"", "\"a\" and \"b\""},
                  {"C:\\oma\\Kauppa", "C:\\oma\\Kauppa"},
                  {"C:\\\\oma", "C:\\oma"},
                  {"100 % ä # x", "100 % ä # x"},
                  {"@a", "@a"},
                  {"@@a", "@a"}};
    const char* const names[] = {"Iso Kauppa Äijä", "a.b-c_d", "50% alv", "%C4%20%U20AC"};
    const char* const meant[] = {"Iso Kauppa Äijä", "a.b-c_d", "50% alv", "Ä €"};
    for (const auto& v : values) {
        QByteArray text("; oma huomautus\n[Engine]\nClientLibrary=/opt/lib,1.so\n\n[Aliases]\n");
        for (const char* name : names)
            text += QByteArray(name) + "\\PhysicalName=" + v.text + "\n" + name +
                    "\\odbcattributes = " + v.text + '\n';
        text += QByteArray("[Aliases\\Oma osasto]\nPhysicalName=") + v.text + '\n';
        QDir().mkpath(userSettingsFolder());
        test::writeFile(settingsFile(), text);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(aliasNames().size(), 5 + round);
            for (const char* name : meant) {
                const auto alias = findAlias(str(name));
                ASSERT_TRUE(alias) << name;
                EXPECT_EQ(alias->physicalName, str(v.value)) << name;
                EXPECT_EQ(alias->odbcAttributes, str(v.value)) << name;
            }
            EXPECT_EQ(findAlias(str("Oma osasto"))->physicalName, str(v.value));
            EXPECT_EQ(engineSetting(str("ClientLibrary")), str("/opt/lib,1.so"));
            storeAlias({str("uusi"), str(v.value), {}, {}});
            EXPECT_EQ(findAlias(str("uusi"))->physicalName, str(v.value));
        }
        EXPECT_TRUE(test::fileBytes(settingsFile()).startsWith("; oma huomautus\n[Engine]\n"));
        EXPECT_TRUE(removeAlias(str("oma osasto")));
        EXPECT_FALSE(findAlias(str("Oma osasto")));
    }
}

// The file stays one that the toolkit's own INI files are, which earlier versions wrote.
TEST_F(AliasesTest, TheFileIsSpelledAsItAlwaysWas) {
    const char* const texts[] = {"Äijän Öljy & Rauta",
                                 "a,b;c=d",
                                 " reunoilla ",
                                 "\"a\" \\ b\\",
                                 "100 %20 € \xF0\x9F\x98\x80",
                                 "@Invalid()",
                                 "@@x",
                                 "rivi\nrivi\t\001f",
                                 "[x] #y"};
    const auto settings = [this] {
        return std::make_unique<QSettings>(settingsFile(), QSettings::IniFormat);
    };
    int number = 0;
    for (const char* text : texts) {
        const QString theirs = QStringLiteral("Koe %1 äÄ%=.\"€").arg(++number);
        const QString ours = QStringLiteral("Oma %1 General [ä]").arg(number);
        settings()->setValue(str("Aliases/") + theirs + str("/PhysicalName"), str(text));
        ASSERT_TRUE(findAlias(theirs)) << text;
        EXPECT_EQ(findAlias(theirs)->physicalName, str(text));
        storeAlias({ours, str(text), str(text), {}});
        EXPECT_EQ(findAlias(ours)->localFilePath, str(text));
        EXPECT_EQ(settings()->value(str("Aliases/") + ours + str("/PhysicalName")).toString(),
                  str(text));
        EXPECT_EQ(settings()->value(str("Aliases/") + theirs + str("/PhysicalName")).toString(),
                  str(text));
    }
    EXPECT_EQ(aliasNames().size(), 2 * number);
}

TEST_F(AliasesTest, OnlyTheUserReadsHisPasswords) {
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
#endif

TEST_F(AliasesTest, AnotherSettingsFolderIsAnotherList) {
    storeAlias({str("eka"), str("/a"), {}, {}});
    const QTemporaryDir other;
    useConfig(other.path());
    EXPECT_TRUE(aliasNames().isEmpty());
    storeAlias({str("toka"), str("/b"), {}, {}});
    useConfig(m_config.path());
    EXPECT_EQ(aliasNames(), QStringList(str("eka")));
    EXPECT_TRUE(userSettingsFolder().startsWith(m_config.path()));
}

#ifndef Q_OS_WIN
TEST_F(AliasesTest, TwoProgramsRegisterAtOnce) {
    constexpr int kEach = 40;
    std::vector<pid_t> children;
    for (const char* who : {"eka ", "toka "}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0; i < kEach; ++i)
                storeAlias({str(who) + QString::number(i), str("/a"), {}, {}});
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children)
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_EQ(aliasNames().size(), 2 * kEach);
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

TEST_F(AliasesTest, ADamagedSettingsFileIsNamedAndLeftAlone) {
    ASSERT_TRUE(QDir().mkpath(m_config.filePath(str("Taksavaihe"))));
    const QByteArray bytes("[Aliases]\nx\\PhysicalName=/a\n\xFF\x01garbage\n");
    test::writeFile(settingsFile(), bytes);
    try {
        storeAlias({str("y"), str("/b"), {}, {}});
        ADD_FAILURE() << "written";
    } catch (const data::DataError& error) {
        EXPECT_EQ(error.table(), settingsFile());
        EXPECT_EQ(error.kind(), data::ErrorKind::Damaged);
    }
    EXPECT_THROW(aliasNames(), data::DataError);
    EXPECT_EQ(test::fileBytes(settingsFile()), bytes);

    ASSERT_TRUE(QFile::remove(settingsFile()) && QDir().mkpath(settingsFile()));
    EXPECT_THROW(findAlias(str("x")), data::DataError);
    EXPECT_THROW(storeAlias({str("y"), str("/b"), {}, {}}), data::DataError);
}

TEST_F(AliasesTest, TakingACompanyIntoUse) {
    storeAlias({str("Eka Ö"), str("/data"), str("/oma"), str("zav")});
    storeAlias({str("tyhjä"), {}, {}, {}});
    ASSERT_TRUE(takeIntoUse(str("eKA Ö")));
    EXPECT_EQ(currentCompany().name, str("Eka Ö"));
    EXPECT_EQ(currentCompany().localFolder, str("/oma"));
    EXPECT_EQ(currentCompany().ownerName, str("zav"));
    EXPECT_FALSE(takeIntoUse(str("muu")));
    EXPECT_EQ(dataFolderFile(str("f")), str("/data") + platformSeparator() + str("f"));
    ASSERT_TRUE(takeIntoUse(str("tyhjä")));
    EXPECT_EQ(dataFolderFile(str("f")), str("f"));
}

}  // namespace
