#include "framework/core/definition_store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QSettings>

#include "platform/user_settings.h"
#include "tests/support/company_folder.h"

using framework::DefinitionStore;
using test::str;

namespace {

const QString kForm = QStringLiteral("AlvMuutosLomake");

class DefinitionStoreTest : public ::testing::Test {
  protected:
    test::CompanyFolder m_company;
    DefinitionStore m_store;
    QString m_file = m_company.file(QStringLiteral("MAARITYS/AlvMuutosLomake.INI"));
};

TEST_F(DefinitionStoreTest, DefinitionsComeBackByNameInFinnishOrder) {
    EXPECT_TRUE(m_store.GetValues(kForm).isEmpty());
    EXPECT_FALSE(m_store.load(kForm, str("Normaali")));
    EXPECT_FALSE(m_store.remove(kForm, str("Normaali")));

    const QMap<QString, QString> values = {{str("Hinta1Edit"), str("1.0120967741935485")},
                                           {str("TuotenroAlkuEdit"), str(" 12 ")},
                                           {str("VieHr"), str("1")}};
    const QStringList names = str("\"x\"|a=b;c#d|Normaali|åå|Äyriäiset 25,5 %|Ω").split(u'|');
    for (const QString& name : names)
        m_store.save(kForm, {name, str("Selitys: ") + name, values});
    EXPECT_EQ(m_store.fileName(kForm), m_file);
    EXPECT_EQ(m_store.GetValues(kForm), names);
    for (const QString& name : names) {
        const auto definition = m_store.load(kForm, u' ' + name.toUpper() + u' ');
        ASSERT_TRUE(definition) << name.toStdString();
        EXPECT_EQ(definition->name, name);
        EXPECT_EQ(definition->description, str("Selitys: ") + name);
        EXPECT_EQ(definition->values, values);
        EXPECT_EQ(definition->value(str("hinta1EDIT")), values.first());
        EXPECT_FALSE(definition->value(str("Hinta2Edit")));
    }
    EXPECT_TRUE(m_store.remove(kForm, str("Åå")));
    EXPECT_EQ(m_store.GetValues(kForm).size(), 5);
    EXPECT_EQ(QDir(m_company.file(str("MAARITYS"))).entryList(QDir::Files),
              QStringList(str("AlvMuutosLomake.INI")));

    // the second "a" would mix its values into the first one's
    test::writeFile(m_file, "[a]\nx=1\n[b]\n\n[A]\nx=2\ny=2\nrikki\n");
    const auto first = m_store.load(kForm, str("A"));
    EXPECT_EQ(first->values, (QMap<QString, QString>{{str("x"), str("1")}}));
    EXPECT_EQ(first->repeatedLine, 5);
    EXPECT_EQ(m_store.load(kForm, str("b"))->repeatedLine, 0);

    test::writeFile(m_file, "[\xD6]\n[zeta]\n[Alfa]\n[]\nx=1\n[ALFA]\n[\xE4]\n[beta]\n");
    EXPECT_EQ(m_store.GetValues(kForm).join(u' '), str("Alfa beta zeta ä Ö"));
}

TEST_F(DefinitionStoreTest, ASaveKeepsOrderAndForeignKeys) {
    ASSERT_TRUE(QDir().mkpath(m_company.file(str("MAARITYS"))));
    test::writeFile(m_file, "; oma\n[B]\nVanha=1\nHINTA1EDIT=1\nselite=x\n\n[A]\nk=\xE4\n");
    m_store.save(
        kForm, {str("b"), str("uusi"), {{str("Hinta1Edit"), str("2")}, {str("VieHr"), str("0")}}});
    EXPECT_EQ(test::fileBytes(m_file),
              "; oma\n[B]\nVanha=1\nHINTA1EDIT=2\nselite=uusi\nVieHr=0\n\n[A]\nk=\xE4\n");
}

TEST_F(DefinitionStoreTest, BadNamesAndFilesChangeNothing) {
    for (const char* name : {"", "  ", "a[b", "a]b", "a\nb", "\x01"}) {
        EXPECT_FALSE(DefinitionStore::nameProblem(str(name)).isEmpty()) << name;
        EXPECT_THROW(m_store.save(kForm, {str(name), {}, {}}), data::DataError) << name;
    }
    EXPECT_FALSE(QFile::exists(m_company.file(str("MAARITYS"))));

    m_store.save(kForm, {str("a"), {}, {}});
    test::writeFile(m_file, "[a]\nVieHr=1\nTuotel\n[b]\n");
    EXPECT_THROW(m_store.load(kForm, str("a")), data::DataError);
    EXPECT_TRUE(m_store.load(kForm, str("b")));
    EXPECT_TRUE(m_store.has(kForm, str(" A ")));
    EXPECT_FALSE(m_store.has(kForm, str(" ")));
    m_store.save(kForm, {str("A"), {}, {{str("Tuoteloki"), str("1")}}});  // mends it
    EXPECT_EQ(m_store.load(kForm, str("a"))->values,
              (QMap<QString, QString>{{str("VieHr"), str("1")}, {str("Tuoteloki"), str("1")}}));
    const QByteArray damaged("[a]\nx=1\n[b\ny=2\n");
    test::writeFile(m_file, damaged);
    EXPECT_THROW(m_store.GetValues(kForm), data::DataError);
    EXPECT_THROW(m_store.load(kForm, str("a")), data::DataError);
    EXPECT_THROW(m_store.save(kForm, {str("a"), {}, {}}), data::DataError);
    EXPECT_THROW(m_store.remove(kForm, str("a")), data::DataError);
    EXPECT_EQ(test::fileBytes(m_file), damaged);

    DefinitionStore gone(m_company.file(str("ei/ole")));
    EXPECT_TRUE(gone.GetValues(kForm).isEmpty());
    EXPECT_THROW(gone.save(kForm, {str("a"), {}, {}}), data::DataError);
    EXPECT_FALSE(QFile::exists(m_company.file(str("ei"))));
}

TEST_F(DefinitionStoreTest, AFlagOfTheFormMovesThemToTheLocalFolder) {
    const QTemporaryDir local;
    company::storeAlias({company::currentCompany().name, m_company.path(), local.path(), {}});
    ASSERT_TRUE(company::takeIntoUse(company::currentCompany().name));
    EXPECT_EQ(m_store.fileName(kForm), m_file);
    QSettings settings(platform::userSettingsFolder() + str("/aliases.ini"), QSettings::IniFormat);
    settings.setValue(str("Lomakkeet/AlvMuutosLomake/PaikallinenMaaritys"), 1);
    settings.sync();
    EXPECT_EQ(m_store.fileName(kForm), local.filePath(str("MAARITYS/AlvMuutosLomake.INI")));
    EXPECT_EQ(m_store.fileName(str("Muu")), m_company.file(str("MAARITYS/Muu.INI")));
    settings.remove(str("Lomakkeet"));
}

TEST(DefinitionStore, ALoadWithoutANameMeansNormaali) {
    EXPECT_EQ(DefinitionStore::nameToLoad(str("  ")), str("Normaali"));
    EXPECT_EQ(DefinitionStore::nameToLoad(str(" x ")), str("x"));
}

}  // namespace
