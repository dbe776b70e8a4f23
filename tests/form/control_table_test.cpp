#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollArea>

#include "framework/ui/program_style.h"
#include "framework/ui/saved_control.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"
#include "vatchange/form/change_form.h"

namespace {

struct Control {
    const char* name;
    const char* caption;  // of check boxes and groups; "" for edits
    const char* hint;
    const char* initial;  // as a definition file has it
    const char* spoken;   // to a screen reader
};

constexpr char kIgnoreHint[] = "Ryhmät, joita ei oteta mukaan. Ilmoita pilkkueroteltu luettelo.";
constexpr char kLevelKeepHint[] = "Tuotetiedoissa säilytetään alv0 hinta";

const Control kControls[] = {
    {"AliryhmaCheckBox", "Aliryhmä#", "", "0", "Aliryhmä#"},
    {"AliryhmaAlkuEdit", "", "", "0", "Aliryhmä, alku"},
    {"AliryhmaLoppuEdit", "", "", "0", "Aliryhmä, loppu"},
    {"edtAliryhmaIgnore", "", kIgnoreHint, "", "Aliryhmä, ulosrajattavat ryhmät"},
    {"TuoteryhmaCheckBox", "Tuoteryhmä#", "", "0", "Tuoteryhmä#"},
    {"TuoteryhmaAlkuEdit", "", "", "0", "Tuoteryhmä, alku"},
    {"TuoteryhmaLoppuEdit", "", "", "0", "Tuoteryhmä, loppu"},
    {"edtTuoteryhmaIgnore", "", kIgnoreHint, "", "Tuoteryhmä, ulosrajattavat ryhmät"},
    {"PaaryhmaCheckBox", "Pääryhmä#", "", "0", "Pääryhmä#"},
    {"PaaryhmaAlkuEdit", "", "", "0", "Pääryhmä, alku"},
    {"PaaryhmaLoppuEdit", "", "", "0", "Pääryhmä, loppu"},
    {"edtPaaryhmaIgnore", "", kIgnoreHint, "", "Pääryhmä, ulosrajattavat ryhmät"},
    {"TuotenroCheckBox", "Tuotenro (ei käytössä)", "", "0", "Tuotenro (ei käytössä)"},
    {"TuotenroAlkuEdit", "", "", "", "Tuotenro, alku"},
    {"TuotenroLoppuEdit", "", "", "", "Tuotenro, loppu"},
    {"AsRyhmaCheckList", "",
     "Valitse tästä päivitettävät asiakasryhmät (ei valittu yhtään = kaikki)", "", "As. ryhmät"},
    {"LahdeAlvLuokkaEdit", "", "", "0", "Vanha luokka"},
    {"KohdeAlvLuokkaEdit", "",
     "Ilmoita uuden verokannan luokka. Jos muutat vain hintoja, muttet luokkaa laita uusi samaksi "
     "kuin vanha",
     "0", "Uusi luokka"},
    {"OstohintaEdit", "", "", "1", "Ostohinta"},
    {"SailytaAlv0_CheckBoxOstohinta", "Säilytä alv0 hinta", "", "0",
     "Ostohinta, säilytä alv0 hinta"},
    {"ViimOstohintaEdit", "", "", "1", "Viim. ostohinta"},
    {"SailytaAlv0_CheckBoxViimOstohinta", "Säilytä alv0 hinta", "", "0",
     "Viim. ostohinta, säilytä alv0 hinta"},
    {"PriceChangeLimitEdit", "",
     "Muuttaa tuotteen verolliset hinnat vain hintatasoilta, joiden hinta on vähintään "
     "hinnanmuutosraja.",
     "0", "Hinnanmuutosraja"},
    {"DoNotUpdateCustomerPricelistVAT0", "Älä päivitä asiakashinnaston alv0 hintaa",
     "Asiakashinnaston alv0 hintaa ei päivitetä vaikka verollinen hinta muuttuisi.", "0",
     "Älä päivitä asiakashinnaston alv0 hintaa"},
    {"VieHr", "Vie hyllynreunaetiketteihin", "Muutettu tuote kirjoitetaan HR etiketteihin.", "1",
     "Vie hyllynreunaetiketteihin"},
    {"MtKerroinEdit", "",
     "Uuden verollisen ahinnan laskemiseen käytettävä kerroin.\nJos verollinen ahinta ei muutu, "
     "jätä kertoimeksi 1.",
     "1", "Myyntitilauskerroin"},
    {"SailytaAlv0_CheckBoxMT", "Laske verollinen alv0:sta",
     "Uusi verollinen a-hinta lasketaan kertoimen sijaan alv0 a-hinnasta.", "0",
     "Myyntitilaus, laske verollinen alv0:sta"},
    {"MTToimPaivaRajaus", "", "Ajetaan vaan ne joiden toimituspäivä on tämä tai tuoreempi", "",
     "Toimituspäivä alkaen"},
    {"OtKerroinEdit", "",
     "Uuden verollisen a-ostohinnan laskemiseen käytettävä kerroin.\nJos verollinen a-ostohinta ei "
     "muutu, jätä kertoimeksi 1.",
     "1", "Ostotilauskerroin"},
    {"SailytaAlv0_CheckBoxOT", "Laske verollinen alv0:sta",
     "Uusi verollinen a-ostohinta lasketaan kertoimen sijaan alv0 a-ostohinnasta.", "0",
     "Ostotilaus, laske verollinen alv0:sta"},
    {"Tuoteloki", "Loki tuotekohtaisista muutoksista",
     "Kirjoittaa tuotemuutoksista yksityiskohtaisen lokin", "0",
     "Loki tuotekohtaisista muutoksista"},
    {"Eiverkkokauppaa", "Älä päivitä verkkokauppaa",
     "Verkkokaupan muutoksia ei vielä tehdä. Tarpeen silloin jos ajo ajetaan ennakkoon", "0",
     "Älä päivitä verkkokauppaa"},
    {"asiakashinnasto", "Asiakashinnasto", "Ajetaan nettoasiakashinnastot hinta1:n kertoimella",
     "0", "Asiakashinnasto"},
    {"WebKauppaAsHinCheckBox", "Verkkokaupan",
     "Ajetaan verkkokaupan asiakashinnastot hinta1:n kertoimella", "0", "Verkkokaupan"},
    {"Kampanjat", "Kampanja", "Ajetaan kampanjat kertoimella", "0", "Kampanja"},
    {"MaaraAle", "Määräale", "Ajetaan määräalennukset kertoimella", "0", "Määräale"},
    {"MtCheckBox", "Myyntitilaus", "", "0", "Myyntitilaus"},
    {"OtCheckBox", "Ostotilaus", "", "0", "Ostotilaus"},
    {"Tuotteet", "Tuotteet ja ryhmät", "Ajetaan tuotehinnat, veroluokat ja ryhmien veroluokat", "1",
     "Tuotteet ja ryhmät"},
    {"cbVakioLaskutus", "Toistuvaislaskutus", "Päivitetään vakio/kausilaskutus myös", "0",
     "Toistuvaislaskutus"},
    {"chkCheckWebstoreCompliantProductIds", "T.kooditarkastus",
     "Tarkasta verkkokauppatuotteiden tuotekoodit kiellettyjen merkkien varalta.\nTarkastus "
     "tehdään KAIKILLE kannan tuotteille, ei pelkästään taksavaiheessa mukana oleville.",
     "0", "T.kooditarkastus"},
    {"PyoristysSaantoRadioGroup", "Pyöristyssääntö", "", "0", "Pyöristyssääntö"},
    {"PyoristysRadioGroup", "Pyöristys (senttiä)", "", "1", "Pyöristys (senttiä)"},
};

std::vector<Control> allControls() {
    static std::vector<std::string> names;  // what the pointers below point to
    names.reserve(6 * 9);
    std::vector<Control> all(std::begin(kControls), std::end(kControls));
    for (int level = 1; level <= 9; ++level) {
        const std::string n = std::to_string(level);
        const std::string name = "Hinta " + n;
        all.push_back({names.emplace_back("Hinta" + n + "Edit").c_str(), "", "", "1",
                       names.emplace_back(name + ", kerroin").c_str()});
        all.push_back({names.emplace_back("HintaLahde" + n).c_str(), "", "", "0",
                       names.emplace_back(name + ", hinnan lähde").c_str()});
        all.push_back({names.emplace_back("SailytaAlv0_CheckBox" + n).c_str(), "", kLevelKeepHint,
                       "0", names.emplace_back(name + ", säilytä alv0 hinta").c_str()});
    }
    return all;
}

QString captionOf(const QWidget& control) {
    for (const char* property : {"title", "text"}) {
        const bool isEdit = control.inherits("QLineEdit");
        if (!isEdit && control.property(property).isValid())
            return control.property(property).toString();
    }
    return {};
}

TEST(ControlTable, EveryControlHasItsCaptionHintDefaultAndSpokenName) {
    test::ScriptedDialogs dialogs;
    const test::ShopCompany shop;
    const vatchange::TAlvMuutosLomake form(shop.database());

    QStringList listed;
    for (const Control& expected : allControls()) {
        SCOPED_TRACE(expected.name);
        listed.append(QLatin1String(expected.name));
        const auto* control = form.findChild<QWidget*>(listed.last());
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(captionOf(*control).toStdString(), expected.caption);
        EXPECT_EQ(control->toolTip().toStdString(), expected.hint);
        const auto* saved = dynamic_cast<const framework::SavedControl*>(control);
        ASSERT_NE(saved, nullptr);
        EXPECT_EQ(saved->savedValue().toStdString(), expected.initial);
        EXPECT_EQ(control->accessibleName().toStdString(), expected.spoken);
        EXPECT_EQ(control->accessibleDescription().toStdString(), expected.hint);
    }
    listed.sort();
    EXPECT_EQ(framework::controlValues(form).keys(), listed) << "a control that no table lists";
    test::expectNoMnemonicClash(form);
    test::expectEveryControlSpeaks(form);
}

TEST(ControlTable, EverythingFitsASmallScreen) {
    test::ScriptedDialogs dialogs;
    const test::ShopCompany shop;
    QApplication::setStyle(new framework::ProgramStyle);
    vatchange::TAlvMuutosLomake form(shop.database());
    form.setAttribute(Qt::WA_DeleteOnClose, false);
    QWidget* content = form.findChild<QScrollArea*>()->widget();
    const QSize around(4, form.Esikatsele->sizeHint().height() + 24);
    const QSize needed = content->sizeHint() + around;
    // 1366 x 768 without a task bar of 40 and a title bar; 1920 x 1080 at 150 % is a bit less
    EXPECT_LE(needed.width(), 1276);
    EXPECT_LE(needed.height(), 664);
    form.resize(needed);
    form.show();
    test::expectNothingClipped(form);
    QApplication::setStyle(QStringLiteral("Fusion"));
}

TEST(ControlTable, NamesComeFromTheCompany) {
    test::ScriptedDialogs dialogs;
    const test::ShopCompany shop;
    shop.exec(QStringLiteral("update HINTATASO set Nimi = 'Tukku & Vähittäis' where Nro = 3"));
    const vatchange::TAlvMuutosLomake form(shop.database());

    EXPECT_EQ(form.windowTitle(), QStringLiteral("ALV muutos"));
    EXPECT_EQ(form.Esikatsele->text(), QStringLiteral("&Muuta"));
    EXPECT_EQ(form.Esikatsele->toolTip(), QStringLiteral("Muuta tuotteiden tiedot"));
    EXPECT_TRUE(form.Tulosta->isHidden());
    EXPECT_EQ(form.controls().levelBoxes[2]->title(), QStringLiteral("Tukku & Vähittäis"));
    EXPECT_EQ(form.controls().levelBoxes[8]->title(), QStringLiteral("Hinta 9"));

    const framework::LookupCombo* source = form.controls().source(4);
    ASSERT_EQ(source->count(), 10);
    EXPECT_EQ(source->itemText(0), QStringLiteral("Ei muutosta"));
    EXPECT_EQ(source->itemText(3), QStringLiteral("Tukku & Vähittäis"));
    const QStringList keys = {"0",      "hinta",  "kaksoishinta", "hinta3", "hinta4",
                              "hinta5", "hinta6", "hinta7",       "hinta8", "hinta9"};
    for (int i = 0; i < keys.size(); ++i)
        EXPECT_EQ(source->itemData(i).toString(), keys[i]);

    const framework::CheckList* groups = form.controls().customerGroups;
    ASSERT_EQ(groups->count(), 3);
    EXPECT_EQ(groups->item(2)->text(), QStringLiteral("5=Henkilökunta"));
    EXPECT_EQ(form.controls().roundingRule->items(),
              QStringList({"Normaali", QStringLiteral("Aina ylös"), "Aina alas"}));
    EXPECT_EQ(form.controls().roundingStep->items(), QStringList({"0,1 ", "1", "5", "10", "0,01"}));
}

TEST(ControlTable, MissingPriceLevelIsAnError) {
    const test::ShopCompany shop;
    shop.exec(QStringLiteral("delete from HINTATASO where Nro = 7"));
    try {
        const vatchange::TAlvMuutosLomake form(shop.database());
        FAIL() << "the form was made without price level 7";
    } catch (const data::DataError& e) {
        EXPECT_EQ(e.table(), QStringLiteral("HINTATASO"));
        EXPECT_TRUE(e.detail().startsWith(QStringLiteral("hintatasoa ei löydy")));
    }
}

}  // namespace
