#include "framework/ui/company_choice.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include "company/registration.h"
#include "framework/ui/definition_window.h"
#include "framework/ui/demo_company_dialog.h"
#include "platform/command_line.h"
#include "platform/user_settings.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/test_company.h"

using test::str;

namespace {

TEST(CompanyChoice, AFirstStartOffersToMakeACompany) {
    test::ScriptedDialogs dialogs;
    framework::TYritysValinta choice;
    choice.show();
    QApplication::setActiveWindow(&choice);
    const auto expectOffer = [&choice](bool offered) {
        const auto button = [&](const char* name) {
            return choice.findChild<QPushButton*>(str(name));
        };
        for (const char* name : {"EsimerkkiButton", "EnsimmainenButton"})
            EXPECT_EQ(button(name)->isVisible(), offered);
        EXPECT_EQ(choice.findChild<QTreeWidget*>()->isVisible(), !offered);
        EXPECT_EQ(button("ValitseButton")->isEnabled(), !offered);
    };
    expectOffer(true);
    const test::CompanyFolder company(str("Äyräs Oy"));
    QTest::keyClick(&choice, Qt::Key_F5);
    expectOffer(false);
}

TEST(CompanyChoice, ByParameterOrFromTheList) {
    test::ScriptedDialogs dialogs;
    const test::CompanyFolder first(str("Äyräs Oy"));
    const test::CompanyFolder second(str("Beeta"));
    framework::TYritysValinta choice;
    const std::pair<QStringList, QString> cases[] = {
        {{str("/E"), str("äyräs oy"), str("BEETA")}, str("Beeta")},  // only a to z ignore case
        {{str("ÄYRÄS OY"), str("Äyräs OY")}, str("Äyräs Oy")},
        {{str("Beet")}, {}}};
    for (const auto& [parameters, chosen] : cases) {
        platform::setParameters(parameters);
        EXPECT_EQ(choice.OnParametrina(), !chosen.isEmpty());
        EXPECT_TRUE(chosen.isEmpty() || company::currentCompany().name == chosen);
    }
    platform::setParameters({});

    choice.show();
    QApplication::setActiveWindow(&choice);
    auto* list = choice.findChild<QTreeWidget*>(str("YritysLista"));
    {
        const test::CompanyFolder third(str("Gamma"));
        QTest::keyClick(&choice, Qt::Key_F5);
        ASSERT_EQ(list->topLevelItemCount(), 3);
        QTest::keyClicks(list, str("gam"));
        EXPECT_EQ(list->currentItem()->text(1), QDir::toNativeSeparators(third.path()));
    }
    dialogs.expectMessage(str("Yritystä \"Gamma\" ei enää ole."));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(choice.result(), QDialog::Rejected);
    QTest::keyClicks(list, str("bee"));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(choice.result(), QDialog::Accepted);
    EXPECT_EQ(company::currentCompany().name, str("Beeta"));
}

// What "zavdb add" refuses is refused here too: both use the same checks.
TEST(CompanyChoice, ACompanyIsAddedUsedAndTakenOffTheList) {
    test::ScriptedDialogs dialogs;
    const test::CompanyFolder first(str("Aalto"));
    const QTemporaryDir folder;
    const QString path = QDir(folder.path()).canonicalPath();
    framework::TYritysValinta choice;
    choice.show();
    auto* list = choice.findChild<QTreeWidget*>(str("YritysLista"));
    const auto click = [&choice](const char* name) {
        QTest::mouseClick(choice.findChild<QPushButton*>(str(name)), Qt::LeftButton);
    };
    const auto addFolder = [&](const QString& refusal) {
        QTimer::singleShot(0, &choice, [] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            for (const char* button : {"SelaaButton", "LisaaButton"})
                QTest::mouseClick(dialog->findChild<QPushButton*>(str(button)), Qt::LeftButton);
            dialog->close();
        });
        dialogs.expectFileChoice(path);
        if (!refusal.isEmpty())
            dialogs.expectMessage(refusal);
        click("LisaaButton");
    };
    const QString name = QFileInfo(path).fileName();
    addFolder(str("Kansiossa %1 ei ole yrityksen tietokantaa (YRITYS.ZDB).")
                  .arg(QDir::toNativeSeparators(path)));
    EXPECT_FALSE(company::findAlias(name));
    test::createCompany(path, {});
    addFolder({});
    ASSERT_TRUE(company::findAlias(name));
    EXPECT_EQ(list->currentItem()->text(0), name);

    company::rememberUse(name);
    EXPECT_EQ(company::companiesByUse(), QStringList({name, str("Aalto")}));
    dialogs.expectQuestion(str("Poistetaanko yritys \"%1\" luettelosta?\nSen tiedostot jäävät "
                               "kansioon %2.")
                               .arg(name, QDir::toNativeSeparators(path)),
                           true);
    click("PoistaButton");
    EXPECT_FALSE(company::findAlias(name));
    EXPECT_TRUE(QFile::exists(folder.filePath(str("YRITYS.ZDB"))));
    EXPECT_EQ(company::companiesByUse(), QStringList({str("Aalto")}));
}

class DemoCompany : public ::testing::Test {
  protected:
    DemoCompany() {
        set("NimiEdit", str("Kokeilu"));
        set("KansioEdit", QDir::toNativeSeparators(path()));
        m_dialog.findChild<QSpinBox*>()->setValue(25);
        m_dialog.show();
    }
    ~DemoCompany() override {
        company::TZavDbConnectionModule::shutDown();
        company::removeAlias(str("Kokeilu"));
    }
    QString path() const { return m_folder.filePath(str("uusi/kansio")); }
    void set(const char* edit, const QString& text) {
        m_dialog.findChild<QLineEdit*>(str(edit))->setText(text);
    }
    void click(const char* button) {
        QTest::mouseClick(m_dialog.findChild<QPushButton*>(str(button)), Qt::LeftButton);
    }
    void clickAndExpect(const QString& message) {
        m_dialogs.expectMessage(message);
        click("LuoButton");
    }
    bool closes() {
        return QTest::qWaitFor([this] { return !m_dialog.isVisible(); }, 60'000);
    }

    test::ScriptedDialogs m_dialogs;
    QTemporaryDir m_folder;
    framework::DemoCompanyDialog m_dialog;
};

TEST_F(DemoCompany, CanBeTakenIntoUse) {
    click("LuoButton");
    ASSERT_TRUE(closes());
    EXPECT_EQ(m_dialog.result(), QDialog::Accepted);
    ASSERT_TRUE(company::takeIntoUse(m_dialog.madeCompany()));
    EXPECT_EQ(company::currentCompany().name, str("Kokeilu"));
    EXPECT_EQ(company::companyDatabase().openTable(str("TUOTE"))->recordCount(), 25);
}

TEST_F(DemoCompany, BadInputIsRefusedAndLeavesNothing) {
    set("NimiEdit", str("/vinossa"));
    clickAndExpect(company::aliasNameProblemFinnish(str("/vinossa")));
    set("NimiEdit", str("Kokeilu"));
    set("KansioEdit", {});
    clickAndExpect(str("Anna kansio, johon yritys luodaan."));
    {
        const test::CompanyFolder present(str("Kokeilu"));
        clickAndExpect(str("Yritys \"Kokeilu\" on jo olemassa."));
    }
    EXPECT_TRUE(m_dialog.isVisible());
    EXPECT_FALSE(company::findAlias(str("Kokeilu")));
    const QString aliases = platform::userSettingsFolder() + str("/aliases.ini");
    const QByteArray sound = test::fileBytes(aliases);
    test::writeFile(aliases, "[rikki\n");
    clickAndExpect(test::thrownBy([] { company::findAlias(str("Kokeilu")); }).finnish());
    test::writeFile(aliases, sound);
}

TEST_F(DemoCompany, ACancelLeavesNothingBehind) {
    m_dialog.findChild<QSpinBox*>()->setValue(1'000'000);
    click("LuoButton");
    EXPECT_TRUE(QTest::qWaitFor([this] { return QDir(path()).exists(); }, 60'000));
    click("PeruutaButton");
    ASSERT_TRUE(closes());
    EXPECT_EQ(m_dialog.result(), QDialog::Rejected);
    EXPECT_TRUE(m_dialog.madeCompany().isEmpty());
    EXPECT_FALSE(QDir(path()).exists());
    EXPECT_FALSE(company::findAlias(str("Kokeilu")));
}

}  // namespace
