#include "vatchange/form/change_form.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>
#include <QPointer>
#include <QTest>

#include "framework/core/definition_store.h"
#include "framework/ui/definition_window.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"
#include "vatchange/form/definition_controls.h"

using framework::DefinitionStore;
using framework::TRapMaarForm;
using vatchange::TAlvMuutosLomake;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

constexpr double k24To255 = 1.0120967741935485;

class ChangeForm : public ::testing::Test {
  protected:
    ChangeForm() { QLocale::setDefault(QLocale(QLocale::Finnish)); }
    ~ChangeForm() override { QLocale::setDefault(QLocale::system()); }

    std::unique_ptr<TAlvMuutosLomake> newForm() const {
        auto form = std::make_unique<TAlvMuutosLomake>(m_shop.database());
        form->setAttribute(Qt::WA_DeleteOnClose, false);
        form->show();
        QApplication::setActiveWindow(form.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
        return form;
    }
    void saveDefinition(const QString& name, const QMap<QString, QString>& values) const {
        DefinitionStore().save(TAlvMuutosLomake::kFormName, {name, QString(), values});
    }
    static void type(QWidget* edit, const QString& text) {
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }
    static void leave(QWidget* edit) {
        QTest::keyClick(edit, Qt::Key_Tab);
        QCoreApplication::processEvents();
    }
    QString warning(const char* typed) const {
        return str("Hintakerroin ( %1 ) ei ole sallituissa rajoissa, korjaa hintakerroin!\n"
                   "(kertoimen on oltava vähintään 0,90 ja enintään 1,25 )")
            .arg(QLatin1String(typed));
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
};

TEST_F(ChangeForm, WhatIsTypedIsSavedAndComesBackInANewForm) {
    QMap<QString, QString> typed;
    {
        const auto form = newForm();
        const vatchange::FormControls& c = form->controls();
        c.subGroup.on->click();
        type(c.subGroup.first, str("10"));
        type(c.subGroup.last, str("12345678901"));
        type(c.subGroup.ignored, str("3,x5"));  // letters cannot be typed
        type(c.sourceClass, str("3"));
        type(c.targetClass, str("6"));
        type(c.coefficient(2), str("1.05"));
        c.source(2)->setKey(str("hinta3"));
        c.keep(1)->click();
        type(c.coefficient(vatchange::kPurchaseTag), str("0,75"));
        type(c.priceChangeLimit, str("12,5"));
        type(c.deliveryLimit, str("1.9.2024"));
        c.customerGroups->item(0)->setCheckState(Qt::Checked);
        c.customerGroups->item(2)->setCheckState(Qt::Checked);
        c.shelfLabels->click();
        c.roundingRule->setItemIndex(2);
        c.roundingStep->setItemIndex(4);
        typed = vatchange::textsInControls(*form);

        TRapMaarForm window(*form);
        EXPECT_EQ(window.windowTitle(), str("Määritysarvojen talletus"));
        QTest::keyClicks(window.findChild<QWidget*>(str("NimiEdit")), str("Syyskuu"));
        QTest::keyClicks(window.findChild<QWidget*>(str("SeliteEdit")), str("24 -> 25,5"));
        QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
        EXPECT_EQ(window.result(), QDialog::Accepted);
        EXPECT_EQ(form->LatausCombo->currentText(), str("Syyskuu"));
        EXPECT_EQ(form->findChild<QLabel*>(str("SeliteLabel"))->text(), str("24 -> 25,5"));
    }

    const auto saved = DefinitionStore().load(TAlvMuutosLomake::kFormName, str("SYYSKUU"));
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->description, str("24 -> 25,5"));
    const std::pair<const char*, const char*> stored[] = {{"AliryhmaCheckBox", "1"},
                                                          {"AliryhmaAlkuEdit", "10"},
                                                          {"edtAliryhmaIgnore", "3,5"},
                                                          {"AliryhmaLoppuEdit", "12345678901"},
                                                          {"Hinta1Edit", "1.0120967741935485"},
                                                          {"HintaLahde1", "hinta"},
                                                          {"SailytaAlv0_CheckBox1", "1"},
                                                          {"Hinta2Edit", "1.05"},
                                                          {"HintaLahde2", "hinta3"},
                                                          {"OstohintaEdit", "0.75"},
                                                          {"PriceChangeLimitEdit", "12.5"},
                                                          {"MTToimPaivaRajaus", "2024-09-01"},
                                                          {"AsRyhmaCheckList", "1,5"},
                                                          {"VieHr", "0"},
                                                          {"PyoristysSaantoRadioGroup", "2"},
                                                          {"PyoristysRadioGroup", "4"}};
    for (const auto& [control, value] : stored)
        EXPECT_EQ(saved->value(QLatin1String(control)), QLatin1String(value)) << control;

    const auto form = newForm();
    EXPECT_NE(vatchange::textsInControls(*form), typed);
    form->LatausCombo->setCurrentText(str("Syyskuu"));
    Q_EMIT form->LatausCombo->activated(form->LatausCombo->currentIndex());
    EXPECT_EQ(vatchange::textsInControls(*form), typed);
    EXPECT_TRUE(form->controls().subGroup.box->isEnabled());
    EXPECT_FALSE(form->controls().mainGroup.box->isEnabled());

    const vatchange::ChangeDefinition d = form->definitionFromForm();
    EXPECT_EQ(d.subGroup.last, 12345678901);
    EXPECT_EQ(d.levels[0].coefficient, k24To255);
    EXPECT_TRUE(d.levels[0].keepVat0);
    EXPECT_EQ(d.levels[1].source, str("hinta3"));
    EXPECT_EQ(d.purchaseCoefficient, 0.75);
    EXPECT_EQ(d.salesOrderDeliveryLimit, QDate(2024, 9, 1));
    EXPECT_EQ(d.customerGroups, std::vector<int>({1, 5}));
    EXPECT_FALSE(d.writeShelfLabels);
    EXPECT_EQ(d.roundingRule, vatchange::RoundingRule::Down);
    EXPECT_EQ(d.roundingStep, vatchange::RoundingStep::Hundredth);
}

TEST_F(ChangeForm, SavingOverAnotherDefinitionAsksAndDeletingTakesItAway) {
    saveDefinition(str("Vanha"),
                   {{str("Hinta1Edit"), str("1.1")}, {str("HintaLahde1"), str("hinta")}});
    const auto form = newForm();
    TRapMaarForm window(*form);
    QTest::keyClicks(window.findChild<QWidget*>(str("NimiEdit")), str("vanha"));
    auto* save = window.findChild<QWidget*>(str("TalletaButton"));
    const QString question = str("Määritys \"vanha\" on jo talletettu. Korvataanko se?");
    m_dialogs.expectQuestion(question, false);
    QTest::mouseClick(save, Qt::LeftButton);
    EXPECT_EQ(
        DefinitionStore().load(TAlvMuutosLomake::kFormName, str("Vanha"))->value(str("Hinta1Edit")),
        str("1.1"));
    m_dialogs.expectQuestion(question, true);
    QTest::mouseClick(save, Qt::LeftButton);
    EXPECT_EQ(
        DefinitionStore().load(TAlvMuutosLomake::kFormName, str("Vanha"))->value(str("Hinta1Edit")),
        str("1"));

    TRapMaarForm again(*form);
    m_dialogs.expectQuestion(str("Poistetaanko määritys \"Vanha\"?"), true);
    again.findChild<QTreeWidget*>(str("MaaritysLista"))
        ->setCurrentItem(again.findChild<QTreeWidget*>(str("MaaritysLista"))->topLevelItem(0));
    QTest::mouseClick(again.findChild<QWidget*>(str("PoistaButton")), Qt::LeftButton);
    EXPECT_TRUE(TRapMaarForm::GetValues(TAlvMuutosLomake::kFormName).isEmpty());
    EXPECT_EQ(form->LatausCombo->count(), 0);
}

TEST_F(ChangeForm, ADamagedDefinitionDoesNotDisableTheOthers) {
    const QString name =
        str("Määrittely, jonka nimi on pidempi kuin kuusikymmentä merkkiä: 24 -> 25,5");
    saveDefinition(str("Normaali"), {{str("Tuoteloki"), str("1")}});
    saveDefinition(name, {{str("Kampanjat"), str("1")}});
    const QString file = DefinitionStore().fileName(TAlvMuutosLomake::kFormName);
    test::writeFile(file, "[Normaali]\nTuoteloki=1\nVieH\n" +
                              test::fileBytes(file).mid(test::fileBytes(file).indexOf("[M")));
    const QString problem = str("Tiedot ovat vioittuneet: %1: rivi 3 määrittelyssä \"Normaali\" ei "
                                "ole asetus. Korjaa rivi tai talleta määrittely uudelleen.")
                                .arg(file);
    m_dialogs.expectMessage(
        str("Huomaa: määrittelyä \"Normaali\" ei voitu lukea, käytetään oletusarvoja: ") + problem);
    const auto form = newForm();
    EXPECT_FALSE(form->definitionFromForm().productLog);
    ASSERT_TRUE(TRapMaarForm::LataaArvot(*form, name));
    m_dialogs.expectMessage(problem);
    form->LatausCombo->setCurrentText(str("Normaali"));
    Q_EMIT form->LatausCombo->activated(form->LatausCombo->currentIndex());
    EXPECT_EQ(form->LatausCombo->currentText(), name);
    EXPECT_TRUE(form->definitionFromForm().campaigns);

    {
        TRapMaarForm window(*form);  // saves under the whole name that it was loaded by
        QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
        EXPECT_EQ(TRapMaarForm::GetValues(TAlvMuutosLomake::kFormName),
                  QStringList({name, str("Normaali")}));
    }
    TRapMaarForm window(*form);
    window.show();
    auto* list = window.findChild<QTreeWidget*>(str("MaaritysLista"));
    QTreeWidgetItem* damaged = list->topLevelItem(1);
    EXPECT_EQ(damaged->text(1), str("(vioittunut) ") + problem);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(damaged).center());
    EXPECT_EQ(window.findChild<QLineEdit*>(str("NimiEdit"))->text(), str("Normaali"));
    EXPECT_EQ(window.findChild<QLineEdit*>(str("SeliteEdit"))->text(), QString());
    m_dialogs.expectQuestion(str("Määritys \"Normaali\" on jo talletettu. Korvataanko se?"), true);
    QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
    EXPECT_TRUE(TRapMaarForm::LataaArvot(*form, QString()));
    EXPECT_EQ(form->LatausCombo->currentText(), str("Normaali"));
}

TEST_F(ChangeForm, MissingKeysMeanDefaultsAndUnreadableValuesAreReported) {
    saveDefinition(str("Outo"),
                   {{str("Tuotteet"), str("kyllä")},
                    {str("LahdeAlvLuokkaEdit"), str("3")},
                    {str("KohdeAlvLuokkaEdit"), str("1000")},
                    {str("MtKerroinEdit"), str("1,01")},
                    {str("OtKerroinEdit"), str(" 1.01 ")},
                    {str("PyoristysRadioGroup"), str("5")},
                    {str("MTToimPaivaRajaus"), str("2024-02-30")},
                    {str("AsRyhmaCheckList"), str("5,99,1")},  // 99 is no longer a group
                    {str("HintaLahde3"), str("hinta10")},
                    {str("Hinta3Edit"), str("1.1")},
                    {str("SailytaAlv0_CheckBox3"), str("1")},
                    {str("edtAliryhmaIgnore"), str("3,x,5")},
                    {str("TuntematonOhjain"), str("7")}});
    const auto form = newForm();
    form->controls().campaigns->setChecked(true);  // the definition has no such key
    m_dialogs.expectMessage(
        str("Huomaa: määrittelyn \"Outo\" arvoja ei voitu lukea, käytetään oletusarvoja: "
            "KohdeAlvLuokkaEdit=1000; MtKerroinEdit=1,01; MTToimPaivaRajaus=2024-02-30; "
            "Tuotteet=kyllä; PyoristysRadioGroup=5; HintaLahde3=hinta10"));
    ASSERT_TRUE(TRapMaarForm::LataaArvot(*form, str("outo")));

    const vatchange::ChangeDefinition d = form->definitionFromForm();
    EXPECT_TRUE(d.products);
    EXPECT_FALSE(d.campaigns);
    EXPECT_EQ(d.sourceClass, 3);
    EXPECT_EQ(d.targetClass, 0);
    EXPECT_EQ(d.salesOrderCoefficient, 1.0);
    EXPECT_EQ(d.purchaseOrderCoefficient, 1.01);
    EXPECT_EQ(d.roundingStep, vatchange::RoundingStep::One);
    EXPECT_FALSE(d.salesOrderDeliveryLimit.isValid());
    EXPECT_EQ(d.customerGroups, std::vector<int>({1, 5, 99}));
    EXPECT_EQ(d.subGroup.ignored, str("3,x,5"));
    // no valid source: the level is not changed, whatever its other values say
    EXPECT_EQ(d.levels[2].source, str("0"));
    EXPECT_EQ(d.levels[2].coefficient, 1.0);
    EXPECT_FALSE(d.levels[2].keepVat0);
    EXPECT_FALSE(TRapMaarForm::LataaArvot(*form, str("Olematon")));
}

TEST_F(ChangeForm, NormaaliIsLoadedAtCreationWithoutOtherReactions) {
    saveDefinition(str("normaali"), {{str("LahdeAlvLuokkaEdit"), str("3")},
                                     {str("KohdeAlvLuokkaEdit"), str("6")},
                                     {str("HintaLahde4"), str("hinta")},
                                     {str("SailytaAlv0_CheckBox4"), str("1")},
                                     {str("Hinta4Edit"), str("5.5")}});
    const auto form = newForm();
    EXPECT_EQ(form->LatausCombo->currentText(), str("normaali"));
    // neither the check box nor the range check touches what was saved
    EXPECT_EQ(form->definitionFromForm().levels[3].coefficient, 5.5);
    EXPECT_EQ(form->definitionFromForm().levels[3].source, str("hinta"));
    EXPECT_EQ(form->controls().sourceRate->text(), str("24%"));
    EXPECT_EQ(form->controls().targetRate->text(), str("25,5%"));
}

TEST_F(ChangeForm, CoefficientsOfThePreviousChangeAreCarriedOver) {
    const auto form = newForm();
    for (const bool notice : {true, false}) {
        saveDefinition(str("Koe"), {{str("OtKerroinEdit"), notice ? str("1.00813008") : str("1")}});
        if (notice)
            m_dialogs.expectMessage(
                str("Kertoimia päivitetty edellisen taksavaiheen yhteydessä "
                    "tallennetuista asetuksista"));
        ASSERT_TRUE(TRapMaarForm::LataaArvot(*form, str("Koe")));
        EXPECT_EQ(form->definitionFromForm().purchaseOrderCoefficient, notice ? k24To255 : 1.0);
        EXPECT_TRUE(m_dialogs.allCame());
    }
    // under "/E" the coefficients change all the same, without a word
    platform::setParameters({str("/e")});
    saveDefinition(str("Koe"), {{str("MtKerroinEdit"), str("1.00813008")}});
    const QStringList before = m_shop.logMessages();
    ASSERT_TRUE(TRapMaarForm::LataaArvot(*form, str("Koe")));
    EXPECT_EQ(form->definitionFromForm().salesOrderCoefficient, k24To255);
    EXPECT_EQ(m_shop.logMessages(), before);
}

TEST_F(ChangeForm, AmountsAndDatesAreCheckedOnLeaving) {
    const auto form = newForm();
    framework::DecimalEdit* level = form->controls().coefficient(9);
    for (const char* accepted : {"0,9", "0.9", "1,25", "1", "1.01209677419354"}) {
        type(level, QLatin1String(accepted));
        leave(level);
        EXPECT_FALSE(level->hasFocus()) << accepted;
    }
    EXPECT_EQ(level->text(), str("1,01209677419354"));
    for (const char* refused : {"0,89", "1.26", "", "0"}) {
        type(level, QLatin1String(refused));
        m_dialogs.expectMessage(warning(*refused == '1' ? "1,26" : refused));
        leave(level);
        EXPECT_TRUE(level->hasFocus()) << refused;
        EXPECT_TRUE(m_dialogs.allCame()) << refused;
    }
    // the change button counts as leaving, also when it is pressed by its mnemonic
    m_dialogs.expectMessage(warning("0"));
    EXPECT_FALSE(form->EsikatseleClick());
    type(level, str("1"));

    framework::DecimalEdit* purchase = form->controls().coefficient(vatchange::kPurchaseTag);
    type(purchase, str("7,5"));
    leave(purchase);
    EXPECT_EQ(purchase->value(), 7.5);
    type(purchase, str(","));  // no number: the last one stays
    leave(purchase);
    EXPECT_EQ(purchase->text(), str("7,5"));

    // an unreadable date would lift the limit: no order would be left out
    framework::DateEdit* limit = form->controls().deliveryLimit;
    type(limit, str("31.9.2024"));
    m_dialogs.expectMessage(str("Päivämäärä ( 31.9.2024 ) ei kelpaa, korjaa päivämäärä!"));
    leave(limit);
    EXPECT_TRUE(limit->hasFocus());
    EXPECT_TRUE(m_dialogs.allCame());
}

TEST_F(ChangeForm, AltAndADigitSetsTheCoefficient) {
    const auto form = newForm();
    const std::pair<Qt::Key, double> keys[] = {{Qt::Key_1, 1.0120967741935485},
                                               {Qt::Key_2, 1.008849557522124},
                                               {Qt::Key_3, 1.0091743119266054}};
    std::vector<framework::DecimalEdit*> edits(form->controls().coefficients.begin(),
                                               form->controls().coefficients.end());
    edits.push_back(form->controls().priceChangeLimit);
    for (framework::DecimalEdit* edit : edits) {
        edit->setFocus();
        for (const auto& [key, value] : keys) {
            edit->setValue(1.0);
            QTest::keyClick(edit, key, Qt::AltModifier);
            EXPECT_EQ(edit->value(), value) << edit->objectName().toStdString();
        }
        QTest::keyClick(edit, Qt::Key_1, Qt::AltModifier | Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_4, Qt::AltModifier);
        EXPECT_EQ(edit->value(), 1.0091743119266054);
        edit->setValue(1.0);
    }
}

TEST_F(ChangeForm, KeepingTheVatFreePriceSetsCoefficientAndSource) {
    const auto form = newForm();
    const vatchange::FormControls& c = form->controls();
    c.sourceClass->setValue(3);
    m_dialogs.expectMessage(str("Tarkasta kohde -alvluokka!"));
    c.keep(3)->click();
    EXPECT_FALSE(c.keep(3)->isChecked());
    EXPECT_EQ(c.coefficient(3)->value(), 1.0);

    c.targetClass->setValue(6);
    c.keep(3)->click();
    EXPECT_EQ(c.coefficient(3)->value(), k24To255);
    EXPECT_EQ(c.source(3)->key(), str("hinta3"));
    c.keep(3)->click();
    EXPECT_EQ(c.coefficient(3)->value(), 1.0);
    EXPECT_EQ(c.source(3)->key(), str("hinta3"));

    c.keep(vatchange::kLastPurchaseTag)->click();
    EXPECT_EQ(c.coefficient(vatchange::kLastPurchaseTag)->value(), k24To255);
    c.keep(vatchange::kSalesOrderTag)->click();  // orders have no such reaction
    EXPECT_EQ(c.coefficient(vatchange::kSalesOrderTag)->value(), 1.0);

    // choosing "Ei muutosta" and leaving the combo takes the level out of the change
    c.keep(3)->click();
    c.source(3)->setFocus();
    c.source(3)->setCurrentIndex(0);
    leave(c.source(3));
    EXPECT_FALSE(c.keep(3)->isChecked());
    EXPECT_EQ(c.coefficient(3)->value(), 1.0);

    // so does pressing a button by its mnemonic, which leaves the focus in the combo
    c.source(1)->setKey(str("hinta"));
    c.coefficient(1)->setValue(1.2);
    c.source(1)->setFocus();
    c.source(1)->setCurrentIndex(0);
    c.targetClass->setValue(3);
    m_dialogs.expectMessage(str("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!"));
    QTest::keyClick(c.source(1), Qt::Key_M, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_dialogs.allCame(); }));
    EXPECT_EQ(c.coefficient(1)->value(), 1.0);
}

TEST_F(ChangeForm, ThePriceChangeLimitIsWhatItShows) {
    saveDefinition(str("Koe"), {{str("PriceChangeLimitEdit"), str("10.005")}});
    const auto form = newForm();
    framework::DecimalEdit* limit = form->controls().priceChangeLimit;
    ASSERT_TRUE(TRapMaarForm::LataaArvot(*form, str("Koe")));
    EXPECT_EQ(limit->text(), str("10,005"));
    EXPECT_EQ(limit->value(), 10.005);
    limit->setFocus();
    QTest::keyClick(limit, Qt::Key_1, Qt::AltModifier);
    EXPECT_EQ(limit->text(), str("1,01209677419355"));
    type(limit, str("12,345"));  // two decimals can be typed
    leave(limit);
    EXPECT_EQ(limit->text(), str("12,34"));
    EXPECT_EQ(limit->value(), 12.34);
    type(limit, str(""));  // no limit
    EXPECT_EQ(form->definitionFromForm().priceChangeLimit, 0.0);
    leave(limit);
    EXPECT_EQ(limit->text(), str("0"));
}

TEST_F(ChangeForm, TheWheelChoosesNothing) {
    saveDefinition(str("A"), {});
    saveDefinition(str("B"), {});
    const auto form = newForm();
    ASSERT_TRUE(TRapMaarForm::LataaArvot(*form, str("A")));
    for (QComboBox* list : {static_cast<QComboBox*>(form->LatausCombo),
                            static_cast<QComboBox*>(form->controls().source(1))}) {
        test::turnWheel(*list);
        EXPECT_EQ(list->currentIndex(), 0) << list->objectName().toStdString();
    }
}

TEST_F(ChangeForm, ClassLabelsFollowTheEdits) {
    const auto form = newForm();
    const vatchange::FormControls& c = form->controls();
    const std::pair<int, const char*> cases[] = {
        {3, "24%"}, {6, "25,5%"}, {9, "Ei löydy!"}, {0, ""}};
    for (const auto& [vatClass, text] : cases) {
        type(c.sourceClass, QString::number(vatClass));
        type(c.targetClass, QString::number(vatClass));
        EXPECT_EQ(c.sourceRate->text().toStdString(), text);
        EXPECT_EQ(c.targetRate->text().toStdString(), text);
    }
}

TEST_F(ChangeForm, ReportIsWrittenAsPdf) {
    const auto form = newForm();
    const QString file = m_shop.file(str("raportti.pdf"));
    m_dialogs.expectFileChoice(file);
    form->Pdf->click();
    EXPECT_TRUE(test::fileBytes(file).startsWith("%PDF"));
}

}  // namespace
