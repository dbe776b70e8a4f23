#include <gtest/gtest.h>

#include <QAction>
#include <QLocale>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <memory>

#include "framework/core/definition_store.h"
#include "framework/ui/definition_window.h"
#include "framework/ui/program_dialogs.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

// Leaving edits, and closing the form at the same moment.

using vatchange::TAlvMuutosLomake;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

QString rangeWarning(const char* typed) {
    return str("Hintakerroin ( %1 ) ei ole sallituissa rajoissa, korjaa hintakerroin!\n"
               "(kertoimen on oltava vähintään 0,90 ja enintään 1,25 )")
        .arg(QLatin1String(typed));
}

// The program's own boxes, with their event loops, on the invisible platform of the tests.
class RealBoxes : public framework::ProgramDialogs {
  public:
    RealBoxes() : m_previous(framework::Dialogs::setHandler(this)) {}
    ~RealBoxes() override { framework::Dialogs::setHandler(m_previous); }
    RealBoxes(const RealBoxes&) = delete;
    RealBoxes& operator=(const RealBoxes&) = delete;
    bool someoneThere() const override { return true; }

  private:
    framework::DialogHandler* m_previous;
};

class FormExits : public ::testing::Test {
  protected:
    FormExits() {
        QLocale::setDefault(QLocale(QLocale::Finnish));
        openForm();
    }
    ~FormExits() override {
        delete m_form;
        QLocale::setDefault(QLocale::system());
    }
    void openForm() {
        delete m_form;
        m_form = new TAlvMuutosLomake(m_shop.database());
        m_form->show();
        QApplication::setActiveWindow(m_form);
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_form));
    }
    const vatchange::FormControls& c() const { return m_form->controls(); }

    // The events of a person, none of which lets the event loop turn.
    static void type(QWidget* edit, const char* text) {
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, QLatin1String(text));
    }
    void tab(int times) const {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(m_form->focusWidget(), Qt::Key_Tab);
    }
    void click(const QWidget* control) const {
        QTest::mouseClick(m_form->windowHandle(), Qt::LeftButton, {},
                          control->mapTo(m_form.data(), control->rect().center()));
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    QPointer<TAlvMuutosLomake> m_form;
};

TEST_F(FormExits, EveryEditLeftIsCheckedHoweverFastAndBeforeTheFormIsUsed) {
    m_shop.addProducts(1);
    const std::pair<QWidget*, const char*> wrong[] = {{c().coefficient(1), "2"},
                                                      {c().deliveryLimit, "31.2.2024"}};
    for (const auto& [edit, text] : wrong) {
        SCOPED_TRACE(text);
        const QString warning = edit == c().deliveryLimit
                                    ? str("Päivämäärä ( 31.2.2024 ) ei kelpaa, korjaa päivämäärä!")
                                    : rangeWarning(text);
        for (QWidget* next :
             {static_cast<QWidget*>(nullptr), static_cast<QWidget*>(m_form->Esikatsele),
              static_cast<QWidget*>(m_form->Talletus), static_cast<QWidget*>(m_form->Pdf),
              static_cast<QWidget*>(m_form->Sahkoposti)}) {
            type(edit, text);
            c().coefficient(9)->setFocus();
            tab(4);
            m_dialogs.expectMessage(warning);
            if (next != nullptr)
                click(next);
            QCoreApplication::processEvents();
            EXPECT_TRUE(edit->hasFocus());
            EXPECT_TRUE(m_dialogs.allCame());
        }
        type(edit, edit == c().deliveryLimit ? "" : "1");
    }

    // of two that were left together only the first is told; the other one before the run
    type(c().coefficient(1), "2");
    type(c().coefficient(2), "3");
    tab(1);
    m_dialogs.expectMessage(rangeWarning("2"));
    QCoreApplication::processEvents();
    type(c().coefficient(1), "1");
    m_dialogs.expectMessage(rangeWarning("3"));
    click(m_form->Esikatsele);
    QCoreApplication::processEvents();
    EXPECT_TRUE(c().coefficient(2)->hasFocus());
    EXPECT_EQ(m_shop.logMessages(), QStringList());
}

TEST_F(FormExits, AWarningComesOnceForEachThingThatAPersonDoes) {
    framework::DefinitionStore().save(TAlvMuutosLomake::kFormName,
                                      {str("Koe"),
                                       {},
                                       {{str("LahdeAlvLuokkaEdit"), str("0")},
                                        {str("KohdeAlvLuokkaEdit"), str("0")},
                                        {str("HintaLahde1"), str("hinta")},
                                        {str("HintaLahde2"), str("hinta")},
                                        {str("Hinta1Edit"), str("2")},
                                        {str("Hinta2Edit"), str("3")}}});
    ASSERT_TRUE(framework::TRapMaarForm::LataaArvot(*m_form, str("Koe")));
    m_dialogs.expectMessage(
        str("Kohteen ALV -luokka on oltava > 0!"));  // the range is no rule of a run
    click(m_form->Esikatsele);
    click(c().coefficient(1));
    for (int i = 0; i < 3; ++i) {
        m_dialogs.expectMessage(rangeWarning("2"));
        click(c().coefficient(2));
        for (int turn = 0; turn < 10; ++turn)
            QCoreApplication::processEvents();
        EXPECT_TRUE(c().coefficient(1)->hasFocus());
    }
    type(c().coefficient(1), "1");
    click(c().coefficient(2));
    QCoreApplication::processEvents();
    EXPECT_TRUE(c().coefficient(2)->hasFocus());
}

TEST_F(FormExits, AFormThatIsClosedWarnsNoMore) {
    const RealBoxes boxes;
    for (const bool date : {false, true}) {
        QTimer noBox;
        int seen = 0;
        noBox.callOnTimeout([&seen] {
            if (QWidget* box = QApplication::activeModalWidget()) {
                ++seen;
                box->close();
            }
        });
        noBox.start(5);
        type(date ? static_cast<QWidget*>(c().deliveryLimit) : c().coefficient(1),
             date ? "31.2.2024" : "1,3");
        click(m_form->findChild<QWidget*>(str("Sulje")));
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_form == nullptr; }));
        EXPECT_EQ(seen, 0);
        openForm();
    }
}

// Whatever the form waits for, closing it waits, too.
TEST_F(FormExits, ClosingWaitsForTheBoxThatTheFormWaitsFor) {
    const RealBoxes boxes;
    const std::pair<const char*, std::function<void()>> loops[] = {
        {"warning",
         [this] {
             type(c().coefficient(1), "1,3");
             tab(1);
         }},
        {"question",
         [this] {
             QTest::keyClick(c().campaigns, Qt::Key_Space);
             QTest::keyClick(c().campaigns, Qt::Key_Escape);
         }},
        {"refused run", [this] { click(m_form->Esikatsele); }},
        {"file", [this] { click(m_form->Pdf); }},
        {"definition window", [this] { click(m_form->Talletus); }},
        {"calendar", [this] { c().deliveryLimit->actions().constFirst()->trigger(); }},
    };
    for (const auto& [name, open] : loops) {
        SCOPED_TRACE(name);
        enum class Step { WaitForBox, Closed, Dismissed } step = Step::WaitForBox;
        QTimer person;
        person.callOnTimeout([&] {
            QWidget* box = QApplication::activePopupWidget();
            if (box == nullptr)
                box = QApplication::activeModalWidget();
            if (box == nullptr)
                return;
            if (step == Step::WaitForBox) {
                m_form->close();
                step = Step::Closed;
            } else {
                EXPECT_TRUE(m_form != nullptr && m_form->isVisible());
                box->close();
                step = Step::Dismissed;
            }
        });
        person.start(5);
        open();
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_form == nullptr; }));
        EXPECT_EQ(step, Step::Dismissed);
        openForm();
    }
}

// 24 % to 25.5 %: 125.5 / 124 = 1.0120967741935485; without a source class 1.255; 14 % to 25.5 %:
// 125.5 / 114 = 1.1008771929824561.
TEST_F(FormExits, CoefficientsThatKeepTheVatFreePriceFollowTheClasses) {
    const int purchase = vatchange::kPurchaseTag;
    type(c().targetClass, "6");
    for (const int tag : {1, 2, 3, purchase})
        c().keep(tag)->click();
    EXPECT_EQ(c().coefficient(1)->value(), 1.255);
    type(c().coefficient(2), "1,01");  // a person's own from now on
    c().coefficient(3)->setFocus();
    QTest::keyClick(c().coefficient(3), Qt::Key_2, Qt::AltModifier);
    c().keep(4)->click();
    c().keep(4)->click();  // unticked again

    const struct {
        QWidget* edit;
        const char* typed;
        double coefficient;
    } steps[] = {
        {c().sourceClass, "3", 1.0120967741935485},  {c().sourceClass, "2", 1.1008771929824561},
        {c().sourceClass, "24", 1.1008771929824561},  // no class: by way of 2
        {c().targetClass, "", 1.1008771929824561},   {c().sourceClass, "3", 1.1008771929824561},
        {c().targetClass, "6", 1.0120967741935485}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.typed);
        type(step.edit, step.typed);
        EXPECT_EQ(c().coefficient(1)->value(), step.coefficient);
        EXPECT_EQ(c().coefficient(purchase)->value(), step.coefficient);
        EXPECT_EQ(c().coefficient(2)->value(), 1.01);
        EXPECT_EQ(c().coefficient(3)->value(), 1.008849557522124);
        EXPECT_EQ(c().coefficient(4)->value(), 1.0);
        EXPECT_TRUE(c().keep(1)->isChecked() && c().keep(2)->isChecked());
    }

    // loading computes nothing; what it brought follows the classes if it was computed from them
    framework::DefinitionStore().save(TAlvMuutosLomake::kFormName,
                                      {str("Koe"),
                                       {},
                                       {{str("LahdeAlvLuokkaEdit"), str("3")},
                                        {str("KohdeAlvLuokkaEdit"), str("6")},
                                        {str("HintaLahde1"), str("hinta")},
                                        {str("SailytaAlv0_CheckBox1"), str("1")},
                                        {str("Hinta1Edit"), str("1.0120967741935485")},
                                        {str("HintaLahde2"), str("hinta")},
                                        {str("SailytaAlv0_CheckBox2"), str("1")},
                                        {str("Hinta2Edit"), str("1.2")}}});
    ASSERT_TRUE(framework::TRapMaarForm::LataaArvot(*m_form, str("Koe")));
    EXPECT_EQ(c().coefficient(2)->value(), 1.2);
    type(c().sourceClass, "2");
    EXPECT_EQ(c().coefficient(1)->value(), 1.1008771929824561);
    EXPECT_EQ(c().coefficient(2)->value(), 1.2);
}

}  // namespace
