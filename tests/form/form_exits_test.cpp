#include <QAction>
#include <QPushButton>
#include <QTimer>

#include "framework/ui/program_dialogs.h"
#include "tests/form/form_test.h"

// The form's keys, leaving edits, and closing the form at the same moment.

using test::rangeWarning;
using test::saveDefinition;
using test::str;

namespace {

// The program's own boxes, with their event loops, on the invisible platform of the tests.
class RealBoxes : public framework::ProgramDialogs {
  public:
    RealBoxes() : m_previous(framework::Dialogs::setHandler(this)) {}
    ~RealBoxes() override { framework::Dialogs::setHandler(m_previous); }
    RealBoxes(const RealBoxes&) = delete;
    RealBoxes& operator=(const RealBoxes&) = delete;
    bool isInteractive() const override { return true; }

  private:
    framework::DialogHandler* m_previous;
};

/// Answers the question about unsaved changes; closes any other box.
void discardChanges(QWidget* box) {
    for (auto* button : box->findChildren<QPushButton*>()) {
        if (button->text() == str("&Hylkää muutokset")) {
            button->click();
            return;
        }
    }
    box->close();
}

using FormExits = test::FormTest;

TEST_F(FormExits, TabAndEnterFollowTheLayout) {
    using Keys = std::vector<Qt::Key>;
    const std::tuple<QWidget*, Keys, const char*> cases[] = {
        {m_form->LatausCombo, Keys(15, Qt::Key_Tab),
         "Talletus Pdf Sahkoposti ValmisMaarittely AliryhmaCheckBox TuoteryhmaCheckBox "
         "PaaryhmaCheckBox "
         "TuotenroCheckBox AsRyhmaCheckList LahdeAlvLuokkaEdit KohdeAlvLuokkaEdit Muutospaiva "
         "Hinta1Edit HintaLahde1 SailytaAlv0_CheckBox1"},
        {c().leaveWebShop, Keys(4, Qt::Key_Tab), "Koeajo Esikatsele Sulje LatausCombo"},
        {c().changeDay,
         {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Return},
         "Hinta1Edit HintaLahde1 SailytaAlv0_CheckBox1"},
    };
    for (const auto& [first, keys, path] : cases)
        EXPECT_EQ(focusPath(first, keys), path);
    EXPECT_TRUE(m_shop.logMessages().isEmpty());  // Enter started no run

    type(c().coefficient(2), "2");
    m_dialogs.expectMessage(rangeWarning("2"));
    press(Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(c().coefficient(2)->hasFocus());
    EXPECT_EQ(c().coefficient(2)->selectedText(), str("2"));
}

TEST_F(FormExits, UnsavedChangesAreNotLostWithoutAQuestion) {
    saveDefinition("Alku", {{"Kampanjat", "1"}}, "selite");
    saveDefinition("Toinen", {{"MaaraAle", "1"}});
    openForm();
    const QString save = str("&Talleta"), discard = str("&Hylkää muutokset");
    const QString stay = str("&Jatka muokkausta");
    const QString question = str("Määrittelyn \"Alku\" muutoksia ei ole talletettu.");
    ASSERT_TRUE(load("Alku"));
    EXPECT_FALSE(m_form->hasUnsavedChanges());
    EXPECT_EQ(control<QLabel>("SeliteLabel")->text(), str("selite"));
    const auto edit = [this] {
        c().salesOrders->setFocus();
        press(Qt::Key_Space);
        EXPECT_TRUE(m_form->hasUnsavedChanges());
    };
    const auto arrow = [this] {
        m_form->LatausCombo->setFocus();
        press(Qt::Key_Down);
    };

    edit();
    const std::function<void()> leaves[] = {
        arrow, [this] { choose("Toinen"); }, [this] { click(control("Sulje")); },
        [this] { m_form->close(); }, [this] { press(Qt::Key_Escape); }};
    for (const auto& leave : leaves) {
        m_dialogs.expectChoice(question, stay);
        leave();
        ASSERT_TRUE(m_form != nullptr && m_form->isVisible());
        EXPECT_TRUE(m_dialogs.allShown());
        EXPECT_EQ(m_form->LatausCombo->currentText(), str("Alku"));
        EXPECT_TRUE(c().salesOrders->isChecked() && !c().quantityDiscounts->isChecked());
    }
    EXPECT_EQ(m_dialogs.lastAnswers(), QStringList({save, discard, stay}));

    m_dialogs.expectChoice(question, save);
    arrow();
    EXPECT_TRUE(c().quantityDiscounts->isChecked() && !c().campaigns->isChecked());
    choose("Alku");  // nothing to lose
    EXPECT_TRUE(c().salesOrders->isChecked());
    edit();
    m_dialogs.expectChoice(question, discard);
    choose("Alku");
    EXPECT_TRUE(c().salesOrders->isChecked() && !m_form->hasUnsavedChanges());

    // a deleted definition exists in the form only
    framework::DefinitionStore().remove(m_form->formName(), str("Alku"));
    m_form->refreshNames();
    EXPECT_TRUE(m_form->hasUnsavedChanges());
    m_dialogs.expectChoice(question, discard);
    press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_form == nullptr; }));
}

TEST_F(FormExits, EveryEditIsCheckedOnFastFocusChanges) {
    m_shop.addProducts(1);
    const std::pair<QWidget*, const char*> wrong[] = {{c().coefficient(1), "2"},
                                                      {c().deliveryLimit, "31.2.2024"}};
    for (const auto& [edit, text] : wrong) {
        SCOPED_TRACE(text);
        const QString warning = edit == c().deliveryLimit
                                    ? str("Päivämäärä ( 31.2.2024 ) ei kelpaa, korjaa päivämäärä!")
                                    : rangeWarning(text);
        for (const char* next : {"", "Esikatsele", "Talletus", "Pdf", "Sahkoposti"}) {
            type(edit, text);
            c().coefficient(9)->setFocus();
            press(Qt::Key_Tab, 4);
            m_dialogs.expectMessage(warning);
            if (*next != 0)
                click(control(next));
            QCoreApplication::processEvents();
            EXPECT_TRUE(edit->hasFocus());
            EXPECT_TRUE(m_dialogs.allShown());
        }
        type(edit, edit == c().deliveryLimit ? "" : "1");
    }

    // of two edits left together only the first is reported; the other one before the run
    type(c().coefficient(1), "2");
    type(c().coefficient(2), "3");
    press(Qt::Key_Tab);
    m_dialogs.expectMessage(rangeWarning("2"));
    QCoreApplication::processEvents();
    type(c().coefficient(1), "1");
    m_dialogs.expectMessage(rangeWarning("3"));
    click(m_form->Esikatsele);
    QCoreApplication::processEvents();
    EXPECT_TRUE(c().coefficient(2)->hasFocus());
    EXPECT_EQ(m_shop.logMessages(), QStringList());
}

TEST_F(FormExits, AWarningComesOncePerAction) {
    saveDefinition("Koe", {{"LahdeAlvLuokkaEdit", "0"},
                           {"KohdeAlvLuokkaEdit", "0"},
                           {"HintaLahde1", "hinta"},
                           {"HintaLahde2", "hinta"},
                           {"Hinta1Edit", "2"},
                           {"Hinta2Edit", "3"}});
    ASSERT_TRUE(load("Koe"));
    m_dialogs.expectMessage(
        str("Kohteen ALV -luokka on oltava > 0!"));  // a run does not check the range
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

TEST_F(FormExits, AClosedFormShowsNoWarning) {
    const RealBoxes boxes;
    for (const bool date : {false, true}) {
        QTimer person;
        int seen = 0;
        person.callOnTimeout([&seen] {
            if (QWidget* box = QApplication::activeModalWidget()) {
                ++seen;
                discardChanges(box);
            }
        });
        person.start(5);
        type(date ? static_cast<QWidget*>(c().deliveryLimit) : c().coefficient(1),
             date ? "31.2.2024" : "1,3");
        click(m_form->findChild<QWidget*>(str("Sulje")));
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_form == nullptr; }));
        EXPECT_EQ(seen, date ? 0 : 1);  // about the unsaved number; the date is none
        openForm();
    }
}

TEST_F(FormExits, ClosingWaitsForAnOpenBox) {
    const RealBoxes boxes;
    const std::pair<const char*, std::function<void()>> loops[] = {
        {"warning",
         [this] {
             type(c().coefficient(1), "1,3");
             press(Qt::Key_Tab);
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
                discardChanges(box);
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

TEST_F(FormExits, CoefficientsThatKeepTheVatFreePriceFollowTheClasses) {
    const int purchase = vatchange::kPurchaseTag;
    type(c().targetClass, "6");
    for (const int tag : {1, 2, 3, purchase})
        c().keep(tag)->click();
    EXPECT_EQ(c().coefficient(1)->value(), 1.255);  // no source class: rate 0
    type(c().coefficient(2), "1,01");               // typed: no longer follows the classes
    c().coefficient(3)->setFocus();
    QTest::keyClick(c().coefficient(3), Qt::Key_2, Qt::AltModifier);
    c().keep(4)->click();
    c().keep(4)->click();  // unticked again

    const std::tuple<QWidget*, const char*, double> steps[] = {
        {c().sourceClass, "3", test::k24To255},  {c().sourceClass, "2", test::k14To255},
        {c().sourceClass, "24", test::k14To255},  // class 2 while typing; 24 does not exist
        {c().targetClass, "", test::k14To255},   {c().sourceClass, "3", test::k14To255},
        {c().targetClass, "6", test::k24To255}};
    for (const auto& [edit, typed, coefficient] : steps) {
        SCOPED_TRACE(typed);
        type(edit, typed);
        EXPECT_EQ(c().coefficient(1)->value(), coefficient);
        EXPECT_EQ(c().coefficient(purchase)->value(), coefficient);
        EXPECT_EQ(c().coefficient(2)->value(), 1.01);
        EXPECT_EQ(c().coefficient(3)->value(), 1.008849557522124);
        EXPECT_EQ(c().coefficient(4)->value(), 1.0);
        EXPECT_TRUE(c().keep(1)->isChecked() && c().keep(2)->isChecked());
    }

    // loading computes nothing; a loaded coefficient follows when it equals the computed one
    saveDefinition("Koe", {{"LahdeAlvLuokkaEdit", "3"},
                           {"KohdeAlvLuokkaEdit", "6"},
                           {"HintaLahde1", "hinta"},
                           {"SailytaAlv0_CheckBox1", "1"},
                           {"Hinta1Edit", "1.0120967741935485"},
                           {"HintaLahde2", "hinta"},
                           {"SailytaAlv0_CheckBox2", "1"},
                           {"Hinta2Edit", "1.2"}});
    ASSERT_TRUE(load("Koe"));
    EXPECT_EQ(c().coefficient(2)->value(), 1.2);
    type(c().sourceClass, "2");
    EXPECT_EQ(c().coefficient(1)->value(), test::k14To255);
    EXPECT_EQ(c().coefficient(2)->value(), 1.2);
}

}  // namespace
