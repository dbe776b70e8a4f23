#include <gtest/gtest.h>

#include <QPointer>
#include <QTest>

#include "framework/core/definition_store.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

using vatchange::TAlvMuutosLomake;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class FormKeys : public ::testing::Test {
  protected:
    FormKeys() : m_form(new TAlvMuutosLomake(m_shop.database())) {
        m_form->show();
        QApplication::setActiveWindow(m_form);
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_form));
    }
    ~FormKeys() override { delete m_form; }
    const vatchange::FormControls& controls() const { return m_form->controls(); }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    QPointer<TAlvMuutosLomake> m_form;
};

TEST_F(FormKeys, EnterGoesOnAndNeverStartsARun) {
    m_shop.addProducts(1);
    controls().sourceClass->setValue(3);
    controls().targetClass->setFocus();
    QTest::keyClick(controls().targetClass, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(controls().targetClass, str("6"));
    QTest::keyClick(controls().targetClass, Qt::Key_Return);
    EXPECT_TRUE(controls().coefficient(1)->hasFocus());
    QTest::keyClick(controls().coefficient(1), Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_TRUE(controls().source(1)->hasFocus());
    QTest::keyClick(controls().source(1), Qt::Key_Return);
    EXPECT_TRUE(controls().keep(1)->hasFocus());
    EXPECT_EQ(m_shop.text(str("select LVV from TUOTE")), str("3"));
    EXPECT_TRUE(m_shop.logMessages().isEmpty());

    // a refused coefficient holds the focus against Enter too
    controls().coefficient(2)->setFocus();
    controls().coefficient(2)->selectAll();
    QTest::keyClicks(controls().coefficient(2), str("2"));
    const QLocale locale;
    m_dialogs.expectMessage(
        str("Hintakerroin ( 2 ) ei ole sallituissa rajoissa, korjaa hintakerroin!\n"
            "(kertoimen on oltava vähintään %1 ja enintään %2 )")
            .arg(locale.toString(0.9, 'f', 2), locale.toString(1.25, 'f', 2)));
    QTest::keyClick(controls().coefficient(2), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(controls().coefficient(2)->hasFocus());
    EXPECT_EQ(controls().coefficient(2)->selectedText(), str("2"));
}

TEST_F(FormKeys, TheTabKeyGoesAsTheEyeGoes) {
    const char* const stops[] = {"LatausCombo",
                                 "Talletus",
                                 "Pdf",
                                 "Sahkoposti",
                                 "AliryhmaCheckBox",
                                 "TuoteryhmaCheckBox",
                                 "PaaryhmaCheckBox",
                                 "TuotenroCheckBox",
                                 "AsRyhmaCheckList",
                                 "LahdeAlvLuokkaEdit",
                                 "KohdeAlvLuokkaEdit",
                                 "Hinta1Edit",
                                 "HintaLahde1",
                                 "SailytaAlv0_CheckBox1",
                                 "Hinta2Edit"};
    m_form->LatausCombo->setFocus();
    for (const char* stop : stops) {
        ASSERT_NE(m_form->focusWidget(), nullptr);
        EXPECT_EQ(m_form->focusWidget()->objectName().toStdString(), stop);
        QTest::keyClick(m_form->focusWidget(), Qt::Key_Tab);
    }
    const char* const last[] = {"Eiverkkokauppaa", "Esikatsele", "Sulje", "LatausCombo"};
    controls().leaveWebShop->setFocus();
    for (const char* stop : last) {
        EXPECT_EQ(m_form->focusWidget()->objectName().toStdString(), stop);
        QTest::keyClick(m_form->focusWidget(), Qt::Key_Tab);
    }
}

TEST_F(FormKeys, EscapeClosesAndAsksOnlyWhenSomethingWouldBeLost) {
    const QString question =
        str("Määrittelyä on muutettu, eikä sitä ole talletettu.\nSuljetaanko lomake?");
    controls().campaigns->setFocus();
    QTest::keyClick(controls().campaigns, Qt::Key_Space);
    m_dialogs.expectQuestion(question, false);
    QTest::keyClick(controls().campaigns, Qt::Key_Escape);
    ASSERT_TRUE(m_form != nullptr && m_form->isVisible());
    QTest::keyClick(controls().campaigns, Qt::Key_Space);  // as it was: nothing to lose
    QTest::keyClick(controls().campaigns, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_form == nullptr; }));
}

TEST_F(FormKeys, ALoadedOrSavedDefinitionIsNoUnsavedChange) {
    framework::DefinitionStore().save(TAlvMuutosLomake::kFormName,
                                      {str("Koe"), str("selite"), {{str("Kampanjat"), str("1")}}});
    m_form->applyDefinition(
        *framework::DefinitionStore().load(TAlvMuutosLomake::kFormName, str("Koe")));
    EXPECT_FALSE(m_form->hasUnsavedChanges());
    EXPECT_EQ(m_form->findChild<QLabel*>(str("SeliteLabel"))->text(), str("selite"));
    controls().priceChangeLimit->setFocus();
    controls().priceChangeLimit->selectAll();
    QTest::keyClicks(controls().priceChangeLimit, str("5"));
    EXPECT_TRUE(m_form->hasUnsavedChanges());
    m_form->definitionSaved(m_form->currentDefinition(str("Koe"), {}));
    EXPECT_FALSE(m_form->hasUnsavedChanges());
}

}  // namespace
