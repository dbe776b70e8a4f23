#include "framework/ui/company_choice.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QSpinBox>
#include <QTest>

#include "data/error.h"
#include "data/sql/uni_query.h"
#include "framework/ui/definition_window.h"
#include "framework/ui/demo_company_dialog.h"
#include "platform/user_settings.h"
#include "tests/support/company_folder.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/window_checks.h"

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

TEST(CompanyChoice, AFirstStartOffersToMakeACompany) {
    test::ScriptedDialogs dialogs;
    framework::TYritysValinta choice;
    choice.show();
    QApplication::setActiveWindow(&choice);
    const auto* offer = choice.findChild<QPushButton*>(str("EsimerkkiButton"));
    EXPECT_TRUE(offer->isVisible());
    EXPECT_FALSE(choice.findChild<QTreeWidget*>()->isVisible());
    EXPECT_FALSE(choice.findChild<QPushButton*>(str("ValitseButton"))->isEnabled());
    test::expectNoMnemonicClash(choice);

    const test::CompanyFolder company(str("Äyräs Oy"));
    QTest::keyClick(&choice, Qt::Key_F5);
    EXPECT_FALSE(offer->isVisible());
    EXPECT_TRUE(choice.findChild<QTreeWidget*>()->isVisible());
    EXPECT_TRUE(choice.findChild<QPushButton*>(str("ValitseButton"))->isEnabled());
    test::expectNoMnemonicClash(choice);
    test::expectEveryControlSpeaks(choice);
}

class DemoCompany : public ::testing::Test {
  protected:
    DemoCompany() {
        name()->setText(str("Kokeilu"));
        folder()->setText(QDir::toNativeSeparators(path()));
        m_dialog.findChild<QSpinBox*>()->setValue(25);
        m_dialog.show();
    }
    ~DemoCompany() override {
        company::TZavDbConnectionModule::shutDown();
        company::removeAlias(str("Kokeilu"));
    }
    QString path() const { return m_folder.filePath(str("uusi/kansio")); }
    QLineEdit* name() { return m_dialog.findChild<QLineEdit*>(str("NimiEdit")); }
    QLineEdit* folder() { return m_dialog.findChild<QLineEdit*>(str("KansioEdit")); }
    QPushButton* make() { return m_dialog.findChild<QPushButton*>(str("LuoButton")); }

    test::ScriptedDialogs m_dialogs;
    QTemporaryDir m_folder;
    framework::DemoCompanyDialog m_dialog;
};

TEST_F(DemoCompany, IsMadeAndCanBeTakenIntoUse) {
    QTest::mouseClick(make(), Qt::LeftButton);
    EXPECT_FALSE(make()->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_dialog.isVisible(); }, 60'000));
    EXPECT_EQ(m_dialog.result(), QDialog::Accepted);
    ASSERT_TRUE(company::takeIntoUse(m_dialog.madeCompany()));
    EXPECT_EQ(company::currentCompany().name, str("Kokeilu"));
    data::TUniQuery query(&company::companyDatabase());
    query.sql().setText(str("select count(*) from TUOTE"));
    query.open();
    EXPECT_EQ(query.fieldByName(query.fieldNames().first()).asInteger(), 25);
}

TEST_F(DemoCompany, WhatCannotBeMadeIsRefusedAndLeavesNothing) {
    name()->setText(str("/vinossa"));
    m_dialogs.expectMessage(company::aliasNameProblemFinnish(str("/vinossa")));
    QTest::mouseClick(make(), Qt::LeftButton);
    name()->setText(str("Kokeilu"));
    folder()->clear();
    m_dialogs.expectMessage(str("Anna kansio, johon yritys luodaan."));
    QTest::mouseClick(make(), Qt::LeftButton);
    {
        const test::CompanyFolder present(str("Kokeilu"));
        m_dialogs.expectMessage(str("Yritys \"Kokeilu\" on jo olemassa."));
        QTest::mouseClick(make(), Qt::LeftButton);
    }
    EXPECT_TRUE(m_dialog.isVisible());
    EXPECT_FALSE(company::findAlias(str("Kokeilu")));
    const QString aliases = platform::userSettingsFolder() + str("/aliases.ini");
    const QByteArray sound = test::fileBytes(aliases);
    test::writeFile(aliases, "[rikki\n");
    try {
        company::findAlias(str("Kokeilu"));
        ADD_FAILURE() << "a damaged list of companies is read";
    } catch (const data::DataError& e) {
        m_dialogs.expectMessage(e.finnish());
    }
    QTest::mouseClick(make(), Qt::LeftButton);
    test::writeFile(aliases, sound);
}

TEST_F(DemoCompany, StoppingLeavesNothingBehind) {
    m_dialog.findChild<QSpinBox*>()->setValue(1'000'000);
    QTest::mouseClick(make(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return QDir(path()).exists(); }, 60'000));
    QTest::mouseClick(m_dialog.findChild<QPushButton*>(str("PeruutaButton")), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_dialog.isVisible(); }, 60'000));
    EXPECT_EQ(m_dialog.result(), QDialog::Rejected);
    EXPECT_TRUE(m_dialog.madeCompany().isEmpty());
    EXPECT_FALSE(QDir(path()).exists());
    EXPECT_FALSE(company::findAlias(str("Kokeilu")));
}

}  // namespace
