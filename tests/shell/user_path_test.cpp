#include <gtest/gtest.h>

#include <QApplication>
#include <QDesktopServices>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "framework/core/definition_store.h"
#include "framework/ui/definition_window.h"
#include "shell/main_form.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"

// A user's way through the program, from the main window to the log. Checks the stored data
// after each step.

using test::str;

namespace {

class UrlCatcher : public QObject {
    Q_OBJECT
  public:
    QList<QUrl> urls;
  public Q_SLOTS:
    void open(const QUrl& url) { urls.append(url); }
};

class UserPath : public ::testing::Test {
  protected:
    ~UserPath() override { QFile::remove(company::AlvMuutosIniName()); }

    static void type(QWidget* edit, const char* text) {
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(edit, str(text));
        QTest::keyClick(edit, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    // Fills and confirms the window that "Talleta" opens.
    static void saveAs(const vatchange::TAlvMuutosLomake& form, const char* name) {
        QTimer::singleShot(0, [name] {
            QWidget* window = QApplication::activeModalWidget();
            ASSERT_NE(window, nullptr);
            test::expectNoMnemonicClash(*window);
            test::expectEveryControlSpeaks(*window);
            type(window->findChild<QLineEdit*>(str("NimiEdit")), name);
            QTest::keyClick(window, Qt::Key_Return);
        });
        QTest::mouseClick(form.Talletus, Qt::LeftButton);
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
};

TEST_F(UserPath, FromTheMainWindowToTheLog) {
    m_shop.addProducts(3);
    m_shop.exec(str("update TUOTE set Ryhma = 7, HINTA = 20 where NUMERO = '2'"));
    shell::TMainForm main;
    main.alusta();
    main.show();
    test::expectNoMnemonicClash(main);
    test::expectEveryControlSpeaks(main);
    QTest::mouseClick(main.findChild<QWidget*>(str("BitBtn1")), Qt::LeftButton);
    vatchange::TAlvMuutosLomake* form = main.changeForm();
    ASSERT_NE(form, nullptr);
    QApplication::setActiveWindow(form);

    // fill: product group 7 alone, 24 % to 25.5 %, the first price keeps its VAT-free price
    const vatchange::FormControls& c = form->controls();
    QTest::mouseClick(c.productGroup.on, Qt::LeftButton, {}, QPoint(8, 8));
    type(c.productGroup.first, "7");
    type(c.sourceClass, "3");
    type(c.targetClass, "6");
    c.keep(1)->setFocus();
    QTest::keyClick(c.keep(1), Qt::Key_Space);
    saveAs(*form, "Tasot 7");
    const auto saved = framework::DefinitionStore().load(form->formName(), str("tasot 7"));
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->value(str("TuoteryhmaAlkuEdit")), str("7"));
    EXPECT_EQ(saved->value(str("KohdeAlvLuokkaEdit")), str("6"));
    EXPECT_EQ(saved->value(str("Hinta1Edit")), str("1.0120967741935485"));

    // close and come back: the main window knows the name, the form loads it by the keyboard
    form->close();
    ASSERT_TRUE(QTest::qWaitFor([&main] { return main.changeForm() == nullptr; }));
    EXPECT_GE(main.findChild<QComboBox*>(str("Maar1"))->findText(str("Tasot 7")), 0);
    QTest::mouseClick(main.findChild<QWidget*>(str("BitBtn1")), Qt::LeftButton);
    form = main.changeForm();
    QApplication::setActiveWindow(form);
    EXPECT_EQ(form->definitionFromForm().sourceClass, 0);
    form->LatausCombo->setFocus();
    QTest::keyClicks(form->LatausCombo, str("tas"));
    Q_EMIT form->LatausCombo->activated(form->LatausCombo->currentIndex());
    EXPECT_EQ(form->definitionFromForm().productGroup.first, 7);

    // a refused run changes nothing and says why
    const QString same = str("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!");
    type(form->controls().targetClass, "3");
    m_dialogs.expectMessage(same);
    QTest::mouseClick(form->Esikatsele, Qt::LeftButton);
    EXPECT_EQ(m_shop.text(str("select count(*) from TUOTE where LVV = 3")), str("3"));
    EXPECT_EQ(m_shop.logMessages(), QStringList(same));

    // the run: 20 x 1.255 / 1.24 = 20.2419.., to whole cents 20.24; the other groups stay
    type(form->controls().targetClass, "6");
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 1 kpl)"));
    QTest::mouseClick(form->Esikatsele, Qt::LeftButton);
    EXPECT_EQ(m_shop.number(str("select HINTA from TUOTE where NUMERO = '2' and LVV = 6")), 20.24);
    EXPECT_EQ(m_shop.text(str("select count(*) from TUOTE where HINTA = 10 and LVV = 3")),
              str("2"));
    EXPECT_TRUE(m_shop.logMessages().contains(str("Tuotetiedot muutettu ( 1 kpl)")));

    UrlCatcher desktop;
    QDesktopServices::setUrlHandler(str("file"), &desktop, "open");
    QTest::mouseClick(main.findChild<QWidget*>(str("BtnLog")), Qt::LeftButton);
    QDesktopServices::unsetUrlHandler(str("file"));
    EXPECT_EQ(desktop.urls, QList<QUrl>({QUrl::fromLocalFile(company::AlvMuutosLogName())}));
    EXPECT_TRUE(main.close());
    EXPECT_EQ(main.changeForm(), nullptr);
}

}  // namespace

#include "user_path_test.moc"
