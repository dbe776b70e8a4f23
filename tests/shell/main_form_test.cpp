#include "shell/main_form.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <functional>

#include "framework/core/definition_store.h"
#include "framework/ui/company_choice.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"

using shell::TMainForm;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class MainForm : public ::testing::Test {
  protected:
    MainForm() { QFile::remove(company::AlvMuutosIniName()); }
    ~MainForm() override { QFile::remove(company::AlvMuutosIniName()); }

    QLabel* label(const char* name) { return m_form.findChild<QLabel*>(QLatin1String(name)); }
    QPushButton* button(const char* name) {
        return m_form.findChild<QPushButton*>(QLatin1String(name));
    }
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

TEST_F(MainForm, CaptionsAreInPlace) {
    EXPECT_EQ(m_form.windowTitle(), str("Alvluokkien ja hintojen muutokset"));
    const std::pair<const char*, const char*> buttons[] = {{"BitBtn1", "Alvmuutokset"},
                                                           {"BitBtn2", "&Sulje"},
                                                           {"BtnLog", "Avaa loki"},
                                                           {"Button1", "Poista\najomerkintä"},
                                                           {"Talleta", "Talleta"}};
    for (const auto& [name, caption] : buttons)
        EXPECT_EQ(button(name)->text(), str(caption));
    EXPECT_EQ(button("Talleta")->toolTip(), str("Tallenta määrittelyt muistiin"));
    EXPECT_EQ(label("Label1")->text(), str("Eräajossa ajettavat määrittelyt"));
    EXPECT_EQ(label("Label2")->text(), str("Veroluokat"));
    EXPECT_TRUE(label("lblVersion")->text().startsWith(str("Versio ")));
    EXPECT_EQ(label("Yritys")->text(), str("Yritys"));
    m_form.showCompany();
    EXPECT_EQ(label("Yritys")->text(), str("YRITYS: Koeyritys Äyräs"));
}

TEST_F(MainForm, RatesAreFoundExactlyTheLaterClassWinsAndNothingIsReset) {
    m_shop.exec(str("delete from ALVKANTA where luokka in (2, 6)"));
    m_shop.exec(str("insert into ALVKANTA (luokka, Prosentti) values (5, 25.49)"));
    m_shop.exec(str("insert into ALVKANTA (luokka, Prosentti) values (17, 24)"));
    m_form.alusta();
    EXPECT_EQ(label("Alv255Label")->text(), str("Alv 25.5% - EI LÖYDY"));
    EXPECT_EQ(label("Alv24Label")->text(), str("Alv 24% - LÖYTYY (17)"));
    EXPECT_EQ(label("Alv14Label")->text(), str("Alv 14% - EI LÖYDY"));
    EXPECT_EQ(label("Alv10Label")->text(), str("Alv 10% - LÖYTYY (1)"));
    const auto isRed = [this](const char* name) {
        const QLabel* shown = label(name);
        return shown->autoFillBackground() && shown->palette().color(QPalette::Window).red() > 150;
    };
    EXPECT_TRUE(isRed("Alv255Label"));
    EXPECT_TRUE(label("Alv255Label")->font().bold());
    EXPECT_FALSE(isRed("Alv24Label"));

    m_shop.exec(str("update ALVKANTA set Prosentti = 25.5 where luokka in (3, 17)"));
    m_form.alusta();
    EXPECT_EQ(label("Alv255Label")->text(), str("Alv 25.5% - LÖYTYY (17)"));
    EXPECT_EQ(label("Alv24Label")->text(), str("Alv 24% - LÖYTYY (17)"));
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

    list(1)->setEditText(str("Normaali"));
    list(2)->setEditText(str(""));
    QTest::mouseClick(button("Talleta"), Qt::LeftButton);
    EXPECT_EQ(company::readBatchList(company::AlvMuutosIniName()),
              company::BatchList({str("Normaali"), str(""), str(""), str("Alv255")}));

    // the change form is made once and shown again; closing it adds the names once more to 2..4
    QTest::mouseClick(button("BitBtn1"), Qt::LeftButton);
    const QPointer<vatchange::TAlvMuutosLomake> form = m_form.changeForm();
    ASSERT_NE(form, nullptr);
    QTest::mouseClick(button("BitBtn1"), Qt::LeftButton);
    EXPECT_EQ(m_form.changeForm(), form);
    form->close();
    EXPECT_TRUE(QTest::qWaitFor([&form] { return form.isNull(); }));
    EXPECT_EQ(m_form.changeForm(), nullptr);
    EXPECT_EQ(items(list(1)), names);
    for (int i = 2; i <= 4; ++i)
        EXPECT_EQ(items(list(i)), names + names) << i;
    QTest::mouseClick(button("BitBtn1"), Qt::LeftButton);
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
    QTest::mouseClick(button("Talleta"), Qt::LeftButton);
    EXPECT_EQ(test::fileBytes(batch), list);

    test::writeFile(definitions, saved);
    test::writeFile(batch, "[rikki\n");
    TMainForm other;
    EXPECT_TRUE(other.alusta().join(QString()).contains(batch));
    EXPECT_EQ(other.batchList(), company::BatchList());
    test::writeFile(batch, list);  // mended meanwhile
    m_dialogs.expectMessage(str("Talletettua luetteloa ei voitu lukea, joten sitä ei korvata.\n"
                                "Korjaa tiedosto ja käynnistä ohjelma uudelleen: ") +
                            batch);
    other.TalletaClick();
    EXPECT_EQ(test::fileBytes(batch), list);
}

TEST_F(MainForm, ABatchShowsNoDialogWhateverItCannotRead) {
    const struct {
        const char* text;
        int status;
        std::function<void()> damage;  // found when the change form opens or closes
    } cases[] = {{"[rikki", 0, [] { test::writeFile(company::AlvMuutosIniName(), "[rikki\n"); }},
                 {"hintatasoa ei löydy: 4", 1,
                  [this] { m_shop.exec(str("delete from HINTATASO where Nro = 4")); }}};
    for (const auto& c : cases) {
        QFile::remove(company::AlvMuutosIniName());
        TMainForm form;
        form.alusta();
        c.damage();
        form.BatchMode = true;
        form.show();
        QTimer::singleShot(20'000, &form, [] { QCoreApplication::exit(-1); });
        EXPECT_EQ(QCoreApplication::exec(), c.status) << c.text;
        EXPECT_TRUE(m_shop.logMessages().last().contains(str(c.text))) << c.text;
    }
}

TEST_F(MainForm, TheWheelChoosesNothing) {
    saveDefinition("A");
    saveDefinition("B");
    m_form.alusta();
    m_form.show();
    for (int i = 1; i <= 4; ++i) {
        list(i)->setEditText(str("A"));
        test::turnWheel(*list(i));
        EXPECT_EQ(list(i)->currentText(), str("A")) << i;
    }
}

TEST_F(MainForm, RunMarkKeepsTheChangeFormClosedUntilItIsDeleted) {
    const QString question =
        str("Haluatko varmasti poistaa ajomerkinnän? \n"
            "alv muutos voidaan ajaa silloin uudestaan");
    setMark("2024-09-01 07:00:00");
    setMark("2024-09-01 08:00:00");
    m_dialogs.expectMessage(str("Taksavaihe on kertaalleen ajettu"));
    QTest::mouseClick(button("BitBtn1"), Qt::LeftButton);
    EXPECT_EQ(m_form.changeForm(), nullptr);

    m_dialogs.expectQuestion(question, false);
    QTest::mouseClick(button("Button1"), Qt::LeftButton);
    EXPECT_EQ(m_shop.text(str("select count(*) from ini where sektio='TAKSAVAIHE'")), str("2"));
    m_dialogs.expectQuestion(question, true);
    m_dialogs.expectMessage(str("Ajomerkintä poistettu"));
    QTest::mouseClick(button("Button1"), Qt::LeftButton);
    EXPECT_EQ(m_shop.text(str("select count(*) from ini where sektio='TAKSAVAIHE'")), str("0"));
    m_dialogs.expectQuestion(question, true);
    m_dialogs.expectMessage(str("Ajomerkintää ei ollut"));
    QTest::mouseClick(button("Button1"), Qt::LeftButton);

    setMark("");  // an empty mark is no mark
    QTest::mouseClick(button("BitBtn1"), Qt::LeftButton);
    EXPECT_NE(m_form.changeForm(), nullptr);
}

TEST_F(MainForm, NothingOfTheMainWindowWorksDuringARun) {
    m_shop.addProducts(200);
    m_form.show();
    QTest::mouseClick(button("BitBtn1"), Qt::LeftButton);
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

class UrlCatcher : public QObject {
    Q_OBJECT
  public:
    QList<QUrl> urls;
  public Q_SLOTS:
    void open(const QUrl& url) { urls.append(url); }
};

TEST_F(MainForm, LogOpensInTheDesktopsProgram) {
    UrlCatcher desktop;
    QDesktopServices::setUrlHandler(str("file"), &desktop, "open");
    button("BtnLog")->click();  // no line was ever written: the desktop says so
    company::WriteAlvMuutosLog(str("rivi"));
    button("BtnLog")->click();
    QDesktopServices::unsetUrlHandler(str("file"));
    EXPECT_EQ(desktop.urls, QList<QUrl>(2, QUrl::fromLocalFile(company::AlvMuutosLogName())));
}

TEST(CompanyChoice, ParametersListAndRefresh) {
    test::ScriptedDialogs dialogs;
    const test::CompanyFolder first(str("Äyräs Oy"));
    const test::CompanyFolder second(str("Beeta"));
    platform::setParameters({str("/E"), str("äyräs oy"), str("BEETA")});
    framework::TYritysValinta choice;
    // only the letters a to z match in either case: "äyräs" is not "Äyräs"
    EXPECT_TRUE(choice.OnParametrina());
    EXPECT_EQ(company::currentCompany().name, str("Beeta"));
    platform::setParameters({str("ÄYRÄS OY"), str("Äyräs OY")});
    EXPECT_TRUE(choice.OnParametrina());
    EXPECT_EQ(company::currentCompany().name, str("Äyräs Oy"));
    platform::setParameters({str("Beet")});
    EXPECT_FALSE(choice.OnParametrina());
    platform::setParameters({});

    choice.show();
    QApplication::setActiveWindow(&choice);
    auto* list = choice.findChild<QTreeWidget*>(str("YritysLista"));
    EXPECT_EQ(list->topLevelItemCount(), 2);
    {
        const test::CompanyFolder third(str("Gamma"));
        QTest::keyClick(&choice, Qt::Key_F5);
        ASSERT_EQ(list->topLevelItemCount(), 3);
        QTest::keyClicks(list, str("gam"));
        EXPECT_EQ(list->currentItem()->text(0), str("Gamma"));
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

}  // namespace

#include "main_form_test.moc"
