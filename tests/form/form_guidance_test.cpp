#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

#include "company/company.h"
#include "tests/form/form_test.h"
#include "tests/support/window_checks.h"

// What the form does for its user: ready definitions, counts, the question before a run, and a
// window that fits the screen.

using test::str;

namespace {

class FormGuidance : public test::FormTest {
  protected:
    QString shown(const char* label) const { return control<QLabel>(label)->text(); }
    bool soon(const char* label, const char* text) const {
        return QTest::qWaitFor([&] { return shown(label) == str(text); });
    }
    void chooseReady(const char* change) const {
        QTimer person;
        person.callOnTimeout([&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr)
                return;
            for (QAction* action : menu->actions()) {
                if (action->text().startsWith(str(change))) {
                    menu->setActiveAction(action);
                    QTest::keyClick(menu, Qt::Key_Return);
                    return;
                }
            }
        });
        person.start(5);
        click(control("ValmisMaarittely"));
    }
};

TEST_F(FormGuidance, ReadyDefinitionsFillClassesAndLevels) {
    m_shop.exec(str("insert into ALVKANTA (luokka, Prosentti, Selite) values (7, 24, 'Vanha')"));
    c().campaigns->click();
    m_dialogs.expectChoice(str("Alv-luokkia, joiden kanta on 24 %, on useita. Mikä niistä?"),
                           str("3"));
    m_dialogs.expectChoice(str("Määrittelyä on muutettu, eikä sitä ole talletettu."),
                           str("&Hylkää muutokset"));
    chooseReady("24 % → 25,5 % (1.9.2024)");
    const vatchange::ChangeDefinition filled = m_form->definitionFromForm();
    EXPECT_EQ(filled.sourceClass, 3);
    EXPECT_EQ(filled.targetClass, 6);
    EXPECT_FALSE(filled.campaigns);
    for (std::size_t level = 0; level < filled.levels.size(); ++level) {
        EXPECT_EQ(filled.levels[level],
                  vatchange::PriceLevelChange(
                      {test::k24To255, vatchange::kPriceColumns[level + 1], true}));
    }
    EXPECT_TRUE(m_form->hasUnsavedChanges());

    m_dialogs.expectMessage(
        str("Yrityksessä ei ole alv-luokkaa, jonka kanta on 13,5 %. Lisää "
            "luokka ensin yrityksen alv-kantoihin."));
    chooseReady("14 % → 13,5 %");
    EXPECT_EQ(m_form->definitionFromForm(), filled);

    // the tick above the levels
    EXPECT_EQ(c().keepAll->checkState(), Qt::Checked);
    c().keepAll->click();
    EXPECT_FALSE(c().keep(9)->isChecked());
    c().keep(4)->click();
    EXPECT_EQ(c().keepAll->checkState(), Qt::PartiallyChecked);
    c().keepAll->click();
    EXPECT_EQ(m_form->definitionFromForm(), filled);
}

TEST_F(FormGuidance, TellsWhatADefinitionSelects) {
    m_shop.addProducts(3);
    m_shop.exec(str("update TUOTE set Ryhma = 10 where NUMERO = '2'"));
    type(c().sourceClass, "9");
    EXPECT_EQ(shown("LahdeLabel"), str("Ei löydy!"));
    EXPECT_TRUE(soon("TuotemaaraLabel", "ei koske yhtään tuotetta"));
    test::expectReadable(*m_form);
    type(c().sourceClass, "3");
    type(c().targetClass, "6");
    EXPECT_TRUE(soon("TuotemaaraLabel", "koskee 3 tuotetta"));
    c().productGroup.on->click();
    type(c().productGroup.first, "10");
    EXPECT_TRUE(soon("TuotemaaraLabel", "koskee 1 tuotetta"));
    EXPECT_FALSE(control("Huomautukset")->isVisible());
    c().productGroup.ignored->setText(str("7,x"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return control("Huomautukset")->isVisible(); }));
    m_dialogs.expectAnyMessage();
    click(control("Huomautukset"));
    EXPECT_TRUE(m_dialogs.lastText().contains(str("edtTuoteryhmaIgnore")));
}

TEST_F(FormGuidance, OneQuestionTellsWhatARunWillChange) {
    m_shop.addProducts(3);
    c().sourceClass->setValue(3);
    c().targetClass->setValue(6);
    c().keep(1)->click();
    c().campaigns->click();
    m_shop.exec(str("insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta) values ('2', 1, 10)"));
    int answer = QDialog::Rejected;
    m_dialogs.inDialog = [&answer](QDialog& question) {
        question.show();
        const auto text = [&question](const char* label) {
            return question.findChild<QLabel*>(str(label))->text();
        };
        EXPECT_TRUE(QTest::qWaitFor([&] { return text("RivitTuotteet") == u'3'; }));
        EXPECT_EQ(text("RivitKampanjarivit"), str("1"));
        QStringList texts;
        for (const auto* label : question.findChildren<QLabel*>())
            texts += label->text();
        EXPECT_TRUE(texts.contains(str("3 (24%) → 6 (25,5%)")));
        EXPECT_TRUE(texts.contains(company::currentCompany().name));
        EXPECT_TRUE(question.findChild<QPushButton*>(str("Peruuta"))->isDefault());
        test::expectNothingClipped(question);
        test::expectNoMnemonicClash(question);
        test::expectTabGoesAround(question);
        return answer;
    };
    EXPECT_FALSE(m_form->EsikatseleClick());
    EXPECT_EQ(m_shop.number(str("select count(*) from TUOTE where LVV = 6")), 0);
    answer = QDialog::Accepted;
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 3 kpl)"));
    EXPECT_TRUE(m_form->EsikatseleClick()->clean());
    m_form->Unattended = true;
    m_dialogs.inDialog = [](QDialog&) {
        ADD_FAILURE() << "asks when nobody is there";
        return QDialog::Rejected;
    };
    EXPECT_TRUE(m_form->EsikatseleClick()->clean());
}

TEST_F(FormGuidance, ANarrowWindowScrollsOnlyDownAndKeepsTheClassesInSight) {
    const auto* vertical = m_form->findChild<QScrollArea*>()->verticalScrollBar();
    const auto* horizontal = m_form->findChild<QScrollArea*>()->horizontalScrollBar();
    for (const int width : {895, 1300, 895}) {
        SCOPED_TRACE(width);
        m_form->resize(width, 470);
        QCoreApplication::processEvents();
        const bool narrow = width < 1000;
        EXPECT_EQ(horizontal->maximum(), 0);
        EXPECT_GT(vertical->maximum(), 0);
        test::expectNothingClipped(*m_form);
        test::expectTabGoesAround(*m_form);
        const QRect inWindow(c().targetClass->mapTo(m_form.data(), QPoint()),
                             c().targetClass->size());
        if (narrow) {
            EXPECT_TRUE(m_form->rect().contains(inWindow));
            EXPECT_FALSE(m_form->findChild<QScrollArea*>()->isAncestorOf(c().targetClass));
        }
        EXPECT_EQ(focusPath(narrow ? c().leaveWebShop : static_cast<QWidget*>(c().customerGroups),
                            {Qt::Key_Tab, Qt::Key_Tab}),
                  "LahdeAlvLuokkaEdit KohdeAlvLuokkaEdit");
    }
}

}  // namespace
