#include "shell/main_form.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>

#include "framework/core/definition_store.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"

using shell::TMainForm;
using test::str;

namespace {

class MainForm : public ::testing::Test {
  protected:
    MainForm() { QFile::remove(company::AlvMuutosIniName()); }
    ~MainForm() override { QFile::remove(company::AlvMuutosIniName()); }

    QLabel* label(const char* name) { return m_form.findChild<QLabel*>(str(name)); }
    QPushButton* button(const char* name) { return m_form.findChild<QPushButton*>(str(name)); }
    void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
    QComboBox* list(int number) {
        return m_form.findChild<QComboBox*>(QStringLiteral("Maar%1").arg(number));
    }
    static QStringList items(const QComboBox* combo) {
        QStringList texts;
        for (int i = 0; i < combo->count(); ++i)
            texts.append(combo->itemText(i));
        return texts;
    }
    void saveDefinition(const char* name) {
        framework::DefinitionStore().save(vatchange::TAlvMuutosLomake::kFormName,
                                          {str(name), {}, {}});
    }
    void setMark(const char* data) {
        m_shop.exec(str("insert into ini values ('ZAV.INI', 'TAKSAVAIHE', '20240901', '%1')")
                        .arg(QLatin1String(data)));
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    TMainForm m_form;
};

TEST_F(MainForm, RatesMatchExactlyTheLaterClassWinsAndNothingIsReset) {
    m_shop.exec(str("delete from ALVKANTA where luokka in (2, 6)"));
    m_shop.exec(str("insert into ALVKANTA (luokka, Prosentti) values (5, 25.49)"));
    m_shop.exec(str("insert into ALVKANTA (luokka, Prosentti) values (17, 24)"));
    const auto shown = [this] {
        m_form.alusta();
        QStringList texts;
        for (const char* name : {"Alv255Label", "Alv24Label", "Alv14Label", "Alv10Label"}) {
            const QLabel* rate = label(name);
            texts += rate->text();
            const bool isRed =
                rate->autoFillBackground() && rate->palette().color(QPalette::Window).red() > 150;
            EXPECT_EQ(isRed, rate->text().contains(str("EI LÖYDY"))) << name;
        }
        return texts.join(u'|');
    };
    EXPECT_EQ(shown(), str("Alv 25.5% - EI LÖYDY|Alv 24% - LÖYTYY (17)|Alv 14% - EI LÖYDY|"
                           "Alv 10% - LÖYTYY (1)"));
    m_shop.exec(str("update ALVKANTA set Prosentti = 25.5 where luokka in (3, 17)"));
    EXPECT_EQ(shown(), str("Alv 25.5% - LÖYTYY (17)|Alv 24% - LÖYTYY (17)|Alv 14% - EI LÖYDY|"
                           "Alv 10% - LÖYTYY (1)"));
}

TEST_F(MainForm, BatchListComesFromItsFileAndIsSavedThere) {
    saveDefinition("Normaali");
    saveDefinition("Alv255");
    company::writeBatchList(company::AlvMuutosIniName(),
                            {str(""), str("Jokin"), str(""), str("Alv255")});
    m_form.alusta();
    const QStringList names = {str("Alv255"), str("Normaali")};
    for (int i = 1; i <= 4; ++i)
        EXPECT_EQ(items(list(i)), names) << i;
    EXPECT_EQ(list(1)->currentText(), str(""));
    EXPECT_EQ(list(2)->currentText(), str("Jokin"));  // need not be a saved name
    m_form.show();
    test::turnWheel(*list(4));
    EXPECT_EQ(list(4)->currentText(), str("Alv255"));

    list(1)->setEditText(str("Normaali"));
    list(2)->setEditText(str(""));
    click("Talleta");
    EXPECT_EQ(company::readBatchList(company::AlvMuutosIniName()),
              company::BatchList({str("Normaali"), str(""), str(""), str("Alv255")}));

    // the change form is created once and shown again; closing it adds the names once more to 2..4
    click("BitBtn1");
    const QPointer<vatchange::TAlvMuutosLomake> form = m_form.changeForm();
    ASSERT_NE(form, nullptr);
    click("BitBtn1");
    EXPECT_EQ(m_form.changeForm(), form);
    form->close();
    EXPECT_TRUE(QTest::qWaitFor([&form] { return form.isNull(); }));
    EXPECT_EQ(m_form.changeForm(), nullptr);
    EXPECT_EQ(items(list(1)), names);
    for (int i = 2; i <= 4; ++i)
        EXPECT_EQ(items(list(i)), names + names) << i;
    click("BitBtn1");
    EXPECT_NE(m_form.changeForm(), nullptr);
}

TEST_F(MainForm, ABatchListThatCouldNotBeReadIsNotReplaced) {
    saveDefinition("Alv255");
    const QString definitions =
        framework::DefinitionStore().fileName(vatchange::TAlvMuutosLomake::kFormName);
    const QString batch = company::AlvMuutosIniName();
    // a damaged definitions file leaves the batch list and the classes readable
    company::writeBatchList(batch, {str("Alv255"), str(""), str("B"), str("")});
    const QByteArray list = test::fileBytes(batch);
    const QByteArray saved = test::fileBytes(definitions);
    test::writeFile(definitions, "[rikki\n");
    EXPECT_TRUE(m_form.alusta().join(QString()).contains(definitions));
    EXPECT_EQ(m_form.batchList(), company::readBatchList(batch));
    EXPECT_EQ(label("Alv24Label")->text(), str("Alv 24% - LÖYTYY (3)"));
    click("Talleta");
    EXPECT_EQ(test::fileBytes(batch), list);

    test::writeFile(definitions, saved);
    test::writeFile(batch, "[rikki\n");
    TMainForm other;
    EXPECT_TRUE(other.alusta().join(QString()).contains(batch));
    EXPECT_EQ(other.batchList(), company::BatchList());
    test::writeFile(batch, list);  // repaired
    m_dialogs.expectMessage(str("Talletettua luetteloa ei voitu lukea, joten sitä ei korvata.\n"
                                "Korjaa tiedosto ja käynnistä ohjelma uudelleen: ") +
                            batch);
    other.TalletaClick();
    EXPECT_EQ(test::fileBytes(batch), list);
}

TEST_F(MainForm, ABatchNeverShowsADialog) {
    m_form.alusta();
    test::writeFile(company::AlvMuutosIniName(), "[rikki\n");  // read when the form closes
    m_form.BatchMode = true;
    m_form.show();
    QTimer::singleShot(20'000, &m_form, [] { QCoreApplication::exit(-1); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(m_shop.logMessages().last().startsWith(str("Virhe: ")));
}

TEST_F(MainForm, RunMarkKeepsTheChangeFormClosedUntilItIsDeleted) {
    const auto expectQuestion = [this](bool yes) {
        m_dialogs.expectQuestion(str("Haluatko varmasti poistaa ajomerkinnän? \n"
                                     "alv muutos voidaan ajaa silloin uudestaan"),
                                 yes);
    };
    setMark("2024-09-01 07:00:00");
    setMark("2024-09-01 08:00:00");
    m_dialogs.expectAnyMessage();
    click("BitBtn1");
    EXPECT_TRUE(m_dialogs.lastText().startsWith(str(
        "Taksavaihe on kertaalleen ajettu\n\nAjomerkintä on kirjoitettu 2024-09-01 07:00:00.")));
    EXPECT_EQ(m_form.changeForm(), nullptr);

    expectQuestion(false);
    click("Button1");
    EXPECT_EQ(m_shop.number(str("select count(*) from ini")), 2);
    for (const char* answer : {"Ajomerkintä poistettu", "Ajomerkintää ei ollut"}) {
        expectQuestion(true);
        m_dialogs.expectMessage(str(answer));
        click("Button1");
        EXPECT_EQ(m_shop.number(str("select count(*) from ini")), 0);
    }

    setMark("");  // an empty mark is no mark
    click("BitBtn1");
    EXPECT_NE(m_form.changeForm(), nullptr);
}

TEST_F(MainForm, IsDisabledDuringARun) {
    m_shop.addProducts(200);
    m_form.show();
    click("BitBtn1");
    vatchange::TAlvMuutosLomake* form = m_form.changeForm();
    ASSERT_NE(form, nullptr);
    form->controls().sourceClass->setValue(3);
    form->controls().targetClass->setValue(6);
    form->Unattended = true;
    bool seen = false;
    QTimer timer;
    timer.callOnTimeout(&m_form, [&] {
        if (!form->isRunning() || seen)
            return;
        seen = true;
        for (const char* name : {"BitBtn1", "BitBtn2", "Button1", "Talleta"})
            EXPECT_FALSE(button(name)->isEnabled()) << name;
        EXPECT_FALSE(m_form.close());
    });
    timer.start(0);
    form->EsikatseleClick();
    EXPECT_TRUE(seen);
    EXPECT_TRUE(button("Button1")->isEnabled());
    EXPECT_TRUE(m_form.isVisible());
}

TEST_F(MainForm, AListWithAnUnknownNameIsSavedOnlyIfThePersonInsists) {
    saveDefinition("Alv255");
    m_form.alusta();
    list(1)->setEditText(str("ALV255"));
    list(3)->setEditText(str("Alv26"));
    const QString question =
        str("Määrittelyä ei ole: \"Alv26\". Eräajo, jonka luettelossa on tällainen nimi, ei aja "
            "mitään.\nTalletetaanko luettelo silti?");
    for (const bool insists : {false, true}) {
        m_dialogs.expectQuestion(question, insists);
        click("Talleta");
        EXPECT_EQ(QFile::exists(company::AlvMuutosIniName()), insists);
        EXPECT_EQ(label("Tila")->text().contains(str("talletettiin")), insists);
    }
}

}  // namespace
