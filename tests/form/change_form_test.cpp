#include <QClipboard>

#include "tests/form/form_test.h"
#include "tests/support/window_checks.h"
#include "vatchange/definition/definition_codec.h"
#include "vatchange/form/definition_controls.h"

using framework::DefinitionStore;
using framework::TRapMaarForm;
using test::k24To255;
using test::saveDefinition;
using test::str;
using vatchange::TAlvMuutosLomake;

namespace {

using ChangeForm = test::FormTest;

TEST_F(ChangeForm, TypedValuesAreSavedAndComeBackInANewForm) {
    const struct {
        const char* control;
        const char* typed;  // nullptr: clicked
        const char* stored;
    } cases[] = {{"AliryhmaCheckBox", nullptr, "1"},
                 {"AliryhmaAlkuEdit", "10", "10"},
                 {"AliryhmaLoppuEdit", "12345678901", "12345678901"},
                 {"edtAliryhmaIgnore", "3,x5", "3,5"},  // letters cannot be typed
                 {"LahdeAlvLuokkaEdit", "3", "3"},
                 {"KohdeAlvLuokkaEdit", "6", "6"},
                 {"Hinta2Edit", "1.05", "1.05"},
                 {"SailytaAlv0_CheckBox1", nullptr, "1"},
                 {"OstohintaEdit", "0,75", "0.75"},
                 {"PriceChangeLimitEdit", "12,5", "12.5"},
                 {"MTToimPaivaRajaus", "1.9.2024", "2024-09-01"},
                 {"VieHr", nullptr, "0"}};
    for (const auto& k : cases) {
        if (k.typed == nullptr)
            control<QCheckBox>(k.control)->click();
        else
            type(control(k.control), k.typed);
    }
    c().source(2)->setKey(str("hinta3"));
    c().customerGroups->item(0)->setCheckState(Qt::Checked);
    c().customerGroups->item(2)->setCheckState(Qt::Checked);
    c().roundingRule->setItemIndex(2);
    c().roundingStep->setItemIndex(4);
    const auto typed = vatchange::textsInControls(*m_form);
    {
        TRapMaarForm window(*m_form);
        QTest::keyClicks(window.findChild<QWidget*>(str("NimiEdit")), str("Syyskuu"));
        QTest::keyClicks(window.findChild<QWidget*>(str("SeliteEdit")), str("24 -> 25,5"));
        QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
        EXPECT_EQ(window.result(), QDialog::Accepted);
    }
    EXPECT_EQ(m_form->LatausCombo->currentText(), str("Syyskuu"));
    const auto saved = DefinitionStore().load(TAlvMuutosLomake::kFormName, str("SYYSKUU"));
    ASSERT_TRUE(saved);
    for (const auto& k : cases)
        EXPECT_EQ(saved->value(str(k.control)), str(k.stored)) << k.control;
    for (const auto& [name, stored] : test::Values{{"Hinta1Edit", "1.0120967741935485"},
                                                   {"HintaLahde1", "hinta"},
                                                   {"HintaLahde2", "hinta3"},
                                                   {"AsRyhmaCheckList", "1,5"},
                                                   {"PyoristysSaantoRadioGroup", "2"},
                                                   {"PyoristysRadioGroup", "4"}})
        EXPECT_EQ(saved->value(str(name)), str(stored)) << name;

    openForm();
    EXPECT_NE(vatchange::textsInControls(*m_form), typed);
    choose("Syyskuu");
    EXPECT_EQ(vatchange::textsInControls(*m_form), typed);
    EXPECT_EQ(m_form->definitionFromForm(), vatchange::decodeDefinition(*saved).definition);
    EXPECT_EQ(control<QLabel>("SeliteLabel")->text(), str("24 -> 25,5"));
    EXPECT_TRUE(c().subGroup.box->isEnabled());
    EXPECT_FALSE(c().mainGroup.box->isEnabled());
}

TEST_F(ChangeForm, SavingOverAnotherDefinitionAndDeletingAskFirst) {
    saveDefinition("Vanha", {{"Hinta1Edit", "1.1"}, {"HintaLahde1", "hinta"}});
    TRapMaarForm window(*m_form);
    QTest::keyClicks(window.findChild<QWidget*>(str("NimiEdit")), str("vanha"));
    for (const bool yes : {false, true}) {
        m_dialogs.expectQuestion(str("Määritys \"vanha\" on jo talletettu. Korvataanko se?"), yes);
        QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
        const auto stored = DefinitionStore().load(TAlvMuutosLomake::kFormName, str("Vanha"));
        EXPECT_EQ(stored->value(str("Hinta1Edit")), yes ? str("1") : str("1.1"));
    }
    TRapMaarForm again(*m_form);
    m_dialogs.expectQuestion(str("Poistetaanko määritys \"Vanha\"?"), true);
    auto* list = again.findChild<QTreeWidget*>(str("MaaritysLista"));
    list->setCurrentItem(list->topLevelItem(0));
    QTest::mouseClick(again.findChild<QWidget*>(str("PoistaButton")), Qt::LeftButton);
    EXPECT_TRUE(TRapMaarForm::GetValues(TAlvMuutosLomake::kFormName).isEmpty());
    EXPECT_EQ(m_form->LatausCombo->count(), 0);
}

TEST_F(ChangeForm, ADamagedDefinitionDoesNotDisableTheOthers) {
    const char* const longName =
        "Määrittely, jonka nimi on pidempi kuin kuusikymmentä merkkiä: 24 -> 25,5";
    saveDefinition("Normaali", {{"Tuoteloki", "1"}});
    saveDefinition(longName, {{"Kampanjat", "1"}});
    const QString file = DefinitionStore().fileName(TAlvMuutosLomake::kFormName);
    test::writeFile(file, "[Normaali]\nTuoteloki=1\nVieH\n" +
                              test::fileBytes(file).mid(test::fileBytes(file).indexOf("[M")));
    const QString problem = str("Tiedot ovat vioittuneet: %1: rivi 3 määrittelyssä \"Normaali\" ei "
                                "ole asetus. Korjaa rivi tai talleta määrittely uudelleen.")
                                .arg(file);
    m_dialogs.expectMessage(
        str("Huomaa: määrittelyä \"Normaali\" ei voitu lukea, käytetään oletusarvoja: ") + problem);
    openForm();
    EXPECT_FALSE(m_form->definitionFromForm().productLog);
    ASSERT_TRUE(load(longName));
    m_dialogs.expectMessage(problem);
    choose("Normaali");
    EXPECT_EQ(m_form->LatausCombo->currentText(), str(longName));
    EXPECT_TRUE(m_form->definitionFromForm().campaigns);

    {
        TRapMaarForm window(*m_form);  // saves under the whole name that it was loaded by
        QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
        EXPECT_EQ(TRapMaarForm::GetValues(TAlvMuutosLomake::kFormName),
                  QStringList({str(longName), str("Normaali")}));
    }
    TRapMaarForm window(*m_form);
    window.show();
    auto* list = window.findChild<QTreeWidget*>(str("MaaritysLista"));
    QTreeWidgetItem* damaged = list->topLevelItem(1);
    EXPECT_EQ(damaged->text(1), str("(vioittunut) ") + problem);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(damaged).center());
    EXPECT_EQ(window.findChild<QLineEdit*>(str("SeliteEdit"))->text(), QString());
    m_dialogs.expectQuestion(str("Määritys \"Normaali\" on jo talletettu. Korvataanko se?"), true);
    QTest::mouseClick(window.findChild<QWidget*>(str("TalletaButton")), Qt::LeftButton);
    EXPECT_TRUE(load(""));
    EXPECT_EQ(m_form->LatausCombo->currentText(), str("Normaali"));
}

TEST_F(ChangeForm, UnreadableValuesAreReportedAndBecomeDefaults) {
    saveDefinition("Outo", {{"Tuotteet", "kyllä"},
                            {"LahdeAlvLuokkaEdit", "3"},
                            {"KohdeAlvLuokkaEdit", "1000"},
                            {"AsRyhmaCheckList", "5,99,1"},  // 99 is no longer a group
                            {"HintaLahde3", "hinta10"},
                            {"SailytaAlv0_CheckBox3", "1"},
                            {"edtAliryhmaIgnore", "3,x,5"}});
    c().campaigns->setChecked(true);  // the definition has no such key
    m_dialogs.expectMessage(
        str("Huomaa: määrittelyn \"Outo\" arvoja ei voitu lukea, käytetään oletusarvoja: "
            "KohdeAlvLuokkaEdit=1000; Tuotteet=kyllä; HintaLahde3=hinta10"));
    ASSERT_TRUE(load("outo"));
    vatchange::ChangeDefinition expected;
    expected.sourceClass = 3;
    expected.customerGroups = {1, 5, 99};
    expected.subGroup.ignored = str("3,x,5");
    EXPECT_EQ(m_form->definitionFromForm(), expected);
    EXPECT_FALSE(load("Olematon"));
}

TEST_F(ChangeForm, NormaaliIsLoadedAtCreationWithoutOtherReactions) {
    saveDefinition("normaali", {{"LahdeAlvLuokkaEdit", "3"},
                                {"KohdeAlvLuokkaEdit", "6"},
                                {"HintaLahde4", "hinta"},
                                {"SailytaAlv0_CheckBox4", "1"},
                                {"Hinta4Edit", "5.5"}});
    openForm();
    EXPECT_EQ(m_form->LatausCombo->currentText(), str("normaali"));
    // neither the check box nor the range check touches what was saved
    EXPECT_EQ(m_form->definitionFromForm().levels[3].coefficient, 5.5);
    EXPECT_EQ(m_form->definitionFromForm().levels[3].source, str("hinta"));

    const std::pair<const char*, const char*> rates[] = {
        {nullptr, "24%/25,5%"}, {"3", "24%/24%"}, {"9", "Ei löydy!/Ei löydy!"}, {"0", "/"}};
    for (const auto& [vatClass, shown] : rates) {
        for (QWidget* edit : {c().sourceClass, c().targetClass})
            if (vatClass != nullptr)
                type(edit, vatClass);
        EXPECT_EQ(c().sourceRate->text() + u'/' + c().targetRate->text(), str(shown));
    }
}

TEST_F(ChangeForm, CoefficientsOfThePreviousChangeAreReplacedWithANoticeToAPerson) {
    saveDefinition("Koe", {{"OtKerroinEdit", "1.00813008"}});
    saveDefinition("Uusi", {{"OtKerroinEdit", "1"}});
    m_dialogs.expectMessage(
        str("Kertoimia päivitetty edellisen taksavaiheen yhteydessä tallennetuista asetuksista"));
    ASSERT_TRUE(load("Koe"));
    EXPECT_EQ(m_form->definitionFromForm().purchaseOrderCoefficient, k24To255);
    EXPECT_TRUE(m_dialogs.allShown());
    ASSERT_TRUE(load("Uusi"));
    platform::setParameters({str("/e")});
    const QStringList before = m_shop.logMessages();
    ASSERT_TRUE(load("Koe"));
    EXPECT_EQ(m_form->definitionFromForm().purchaseOrderCoefficient, k24To255);
    EXPECT_EQ(m_shop.logMessages(), before);
}

TEST_F(ChangeForm, EditsAreCheckedOnLeaving) {
    const struct {
        const char* control;
        const char* typed;
        const char* shown;
        const char* refused = nullptr;
    } cases[] = {{"Hinta9Edit", "0,9", "0,9"},
                 {"Hinta9Edit", "0.9", "0,9"},
                 {"Hinta9Edit", "1,25", "1,25"},
                 {"Hinta9Edit", "1.01209677419354", "1,01209677419354"},
                 {"Hinta9Edit", "1.0120967741935485", "1,0120967741935485"},
                 {"Hinta9Edit", "1.01209677419354838709677", "1,0120967741935485"},
                 {"Hinta9Edit", "0.99206349206349207", "0,9920634920634921"},
                 {"Hinta9Edit", "0,89", "0,89", "0,89"},
                 {"Hinta9Edit", "1.26", "1,26", "1,26"},
                 {"Hinta9Edit", "", "", ""},
                 {"Hinta9Edit", "0", "0", "0"},
                 {"Hinta9Edit", "1", "1"},
                 {"OstohintaEdit", "7,5", "7,5"},
                 {"OstohintaEdit", ",", "7,5"},                // no number: the last one stays
                 {"PriceChangeLimitEdit", "12,345", "12,34"},  // two decimals can be typed
                 {"PriceChangeLimitEdit", "", "0"}};
    for (const auto& k : cases) {
        SCOPED_TRACE(str("%1: %2").arg(str(k.control), str(k.typed)).toStdString());
        auto* edit = control<framework::DecimalEdit>(k.control);
        type(edit, k.typed);
        if (k.refused != nullptr)
            m_dialogs.expectMessage(test::rangeWarning(k.refused));
        press(Qt::Key_Tab);
        QCoreApplication::processEvents();
        EXPECT_EQ(edit->hasFocus(), k.refused != nullptr);
        EXPECT_EQ(edit->text(), str(k.shown));
        EXPECT_TRUE(m_dialogs.allShown());
        if (k.refused != nullptr && *k.refused == '0') {  // the change button counts as leaving
            m_dialogs.expectMessage(test::rangeWarning(k.refused));
            EXPECT_FALSE(m_form->EsikatseleClick());
        }
    }
    EXPECT_EQ(m_form->definitionFromForm().priceChangeLimit, 0.0);

    // pasted: as a spreadsheet copies a cell
    auto* first = c().coefficient(1);
    for (const char* copied :
         {"1.0120967741935485", "1,0120967741935485\n", " 1.0120967741935485 "}) {
        first->setFocus();
        first->selectAll();
        QApplication::clipboard()->setText(str(copied));
        first->paste();
        EXPECT_EQ(first->value(), k24To255) << copied;
        press(Qt::Key_Tab);
        EXPECT_EQ(first->text(), str("1,0120967741935485"));
        EXPECT_EQ(m_form->definitionFromForm().levels[0].coefficient, k24To255);
        first->setValue(1.0);
    }

    // an unreadable date would lift the limit: no order would be left out
    auto* limit = c().deliveryLimit;
    type(limit, "31.9.2024");
    m_dialogs.expectMessage(str("Päivämäärä ( 31.9.2024 ) ei kelpaa, korjaa päivämäärä!"));
    press(Qt::Key_Tab);
    QCoreApplication::processEvents();
    EXPECT_TRUE(limit->hasFocus());
    EXPECT_TRUE(m_dialogs.allShown());

    saveDefinition("Koe", {{"PriceChangeLimitEdit", "10.005"}});  // a file may have more
    ASSERT_TRUE(load("Koe"));
    EXPECT_EQ(c().priceChangeLimit->text(), str("10,005"));
    EXPECT_EQ(c().priceChangeLimit->value(), 10.005);
}

TEST_F(ChangeForm, AltAndADigitSetsTheCoefficient) {
    const std::pair<Qt::Key, double> keys[] = {
        {Qt::Key_1, k24To255}, {Qt::Key_2, 1.008849557522124}, {Qt::Key_3, 1.0091743119266054}};
    std::vector<framework::DecimalEdit*> edits(c().coefficients.begin(), c().coefficients.end());
    edits.push_back(c().priceChangeLimit);
    for (framework::DecimalEdit* edit : edits) {
        edit->setFocus();
        for (const auto& [key, value] : keys) {
            edit->setValue(1.0);
            QTest::keyClick(edit, key, Qt::AltModifier);
            EXPECT_EQ(edit->value(), value) << edit->objectName().toStdString();
        }
        QTest::keyClick(edit, Qt::Key_1, Qt::AltModifier | Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_4, Qt::AltModifier);
        EXPECT_EQ(edit->text(), str("1,0091743119266054"));
        edit->setValue(1.0);
    }
}

TEST_F(ChangeForm, KeepingTheVatFreePriceSetsCoefficientAndSource) {
    c().sourceClass->setValue(3);
    m_dialogs.expectMessage(str("Tarkasta kohde -alvluokka!"));
    c().keep(3)->click();
    EXPECT_FALSE(c().keep(3)->isChecked());
    EXPECT_EQ(c().coefficient(3)->value(), 1.0);

    c().targetClass->setValue(6);
    for (const double coefficient : {k24To255, 1.0, k24To255}) {  // ticked, unticked, ticked
        c().keep(3)->click();
        EXPECT_EQ(c().coefficient(3)->value(), coefficient);
        EXPECT_EQ(c().source(3)->key(), str("hinta3"));
    }
    c().keep(vatchange::kLastPurchaseTag)->click();
    EXPECT_EQ(c().coefficient(vatchange::kLastPurchaseTag)->value(), k24To255);
    c().keep(vatchange::kSalesOrderTag)->click();  // orders have no such reaction
    EXPECT_EQ(c().coefficient(vatchange::kSalesOrderTag)->value(), 1.0);

    // choosing "Ei muutosta" and leaving the combo takes the level out of the change
    c().source(3)->setFocus();
    c().source(3)->setCurrentIndex(0);
    press(Qt::Key_Tab);
    EXPECT_FALSE(c().keep(3)->isChecked());
    EXPECT_EQ(c().coefficient(3)->value(), 1.0);

    // so does pressing a button by its mnemonic, which leaves the focus in the combo
    c().source(1)->setKey(str("hinta"));
    c().coefficient(1)->setValue(1.2);
    c().source(1)->setFocus();
    c().source(1)->setCurrentIndex(0);
    c().targetClass->setValue(3);
    m_dialogs.expectMessage(str("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!"));
    QTest::keyClick(c().source(1), Qt::Key_M, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_dialogs.allShown(); }));
    EXPECT_EQ(c().coefficient(1)->value(), 1.0);
}

TEST_F(ChangeForm, TheWheelDoesNotChangeChoices) {
    saveDefinition("A", {});
    saveDefinition("B", {});
    openForm();
    ASSERT_TRUE(load("A"));
    for (QComboBox* list : std::initializer_list<QComboBox*>{m_form->LatausCombo, c().source(1)}) {
        test::turnWheel(*list);
        EXPECT_EQ(list->currentIndex(), 0) << list->objectName().toStdString();
    }
}

TEST_F(ChangeForm, NamesOfLevelsAndGroupsComeFromTheCompany) {
    m_shop.exec(str("update HINTATASO set Nimi = 'Tukku & Vähittäis' where Nro = 3"));
    openForm();
    EXPECT_TRUE(m_form->Tulosta->isHidden());
    EXPECT_EQ(c().levelBoxes[2]->title(), str("Tukku & Vähittäis"));
    EXPECT_EQ(c().levelBoxes[8]->title(), str("Hinta 9"));
    QStringList keys;
    for (int i = 0; i < c().source(4)->count(); ++i)
        keys += c().source(4)->itemData(i).toString();
    EXPECT_EQ(keys.join(u' ').toStdString(),
              "0 hinta kaksoishinta hinta3 hinta4 hinta5 hinta6 hinta7 hinta8 hinta9");
    EXPECT_EQ(c().source(4)->itemText(3), str("Tukku & Vähittäis"));
    ASSERT_EQ(c().customerGroups->count(), 3);
    EXPECT_EQ(c().customerGroups->item(2)->text(), str("5=Henkilökunta"));

    m_shop.exec(str("delete from HINTATASO where Nro = 7"));
    const auto error = test::thrownBy([this] { const TAlvMuutosLomake form(m_shop.database()); });
    EXPECT_EQ(error.table(), str("HINTATASO"));
    EXPECT_TRUE(error.detail().startsWith(str("hintatasoa ei löydy")));
}

TEST_F(ChangeForm, EveryValueControlIsAFieldOfTheTable) {
    EXPECT_EQ(m_form->definitionFromForm(), vatchange::ChangeDefinition());
    const QStringList fields = vatchange::encodeDefinition({}).keys();
    QStringList controls;
    for (const QWidget* widget : m_form->findChildren<QWidget*>()) {
        for (const char* kind : {"framework::ExitEdit", "QCheckBox", "framework::LookupCombo",
                                 "framework::RadioGroup", "framework::CheckList"})
            if (widget->inherits(kind))
                controls.append(widget->objectName());
        if (fields.contains(widget->objectName())) {
            EXPECT_EQ(widget->accessibleDescription(), widget->toolTip());
        }
    }
    controls.removeOne(c().keepAll->objectName());
    controls.sort();
    EXPECT_EQ(controls, fields);
}

}  // namespace
