#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>

#include "framework/ui/saved_control.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

namespace {

struct Control {
    const char* name;
    const char* caption;  // of check boxes and groups; "" for edits
    const char* hint;
    const char* initial;  // as a definition file has it
};

constexpr char kIgnoreHint[] = "Ryhmät, joita ei oteta mukaan. Ilmoita pilkkueroteltu luettelo.";
constexpr char kLevelKeepHint[] = "Tuotetiedoissa säilytetään alv0 hinta";

const Control kControls[] = {
    {"AliryhmaCheckBox", "Aliryhmä#", "", "0"},
    {"AliryhmaAlkuEdit", "", "", "0"},
    {"AliryhmaLoppuEdit", "", "", "0"},
    {"edtAliryhmaIgnore", "", kIgnoreHint, ""},
    {"TuoteryhmaCheckBox", "Tuoteryhmä#", "", "0"},
    {"TuoteryhmaAlkuEdit", "", "", "0"},
    {"TuoteryhmaLoppuEdit", "", "", "0"},
    {"edtTuoteryhmaIgnore", "", kIgnoreHint, ""},
    {"PaaryhmaCheckBox", "Pääryhmä#", "", "0"},
    {"PaaryhmaAlkuEdit", "", "", "0"},
    {"PaaryhmaLoppuEdit", "", "", "0"},
    {"edtPaaryhmaIgnore", "", kIgnoreHint, ""},
    {"TuotenroCheckBox", "Tuotenro (ei käytössä)", "", "0"},
    {"TuotenroAlkuEdit", "", "", ""},
    {"TuotenroLoppuEdit", "", "", ""},
    {"AsRyhmaCheckList", "",
     "Valitse tästä päivitettävät asiakasryhmät (ei valittu yhtään = kaikki)", ""},
    {"LahdeAlvLuokkaEdit", "", "", "0"},
    {"KohdeAlvLuokkaEdit", "",
     "Ilmoita uuden verokannan luokka. Jos muutat vain hintoja, muttet luokkaa laita uusi samaksi "
     "kuin vanha",
     "0"},
    {"OstohintaEdit", "", "", "1"},
    {"SailytaAlv0_CheckBoxOstohinta", "Säilytä alv0 hinta", "", "0"},
    {"ViimOstohintaEdit", "", "", "1"},
    {"SailytaAlv0_CheckBoxViimOstohinta", "Säilytä alv0 hinta", "", "0"},
    {"PriceChangeLimitEdit", "",
     "Muuttaa tuotteen verolliset hinnat vain hintatasoilta, joiden hinta on vähintään "
     "hinnanmuutosraja.",
     "0"},
    {"DoNotUpdateCustomerPricelistVAT0", "Älä päivitä asiakashinnaston alv0 hintaa",
     "Asiakashinnaston alv0 hintaa ei päivitetä vaikka verollinen hinta muuttuisi.", "0"},
    {"VieHr", "Vie hyllynreunaetiketteihin", "Muutettu tuote kirjoitetaan HR etiketteihin.", "1"},
    {"MtKerroinEdit", "",
     "Uuden verollisen ahinnan laskemiseen käytettävä kerroin.\nJos verollinen ahinta ei muutu, "
     "jätä kertoimeksi 1.",
     "1"},
    {"SailytaAlv0_CheckBoxMT", "Laske verollinen alv0:sta",
     "Uusi verollinen a-hinta lasketaan kertoimen sijaan alv0 a-hinnasta.", "0"},
    {"MTToimPaivaRajaus", "", "Ajetaan vaan ne joiden toimituspäivä on tämä tai tuoreempi", ""},
    {"OtKerroinEdit", "",
     "Uuden verollisen a-ostohinnan laskemiseen käytettävä kerroin.\nJos verollinen a-ostohinta ei "
     "muutu, jätä kertoimeksi 1.",
     "1"},
    {"SailytaAlv0_CheckBoxOT", "Laske verollinen alv0:sta",
     "Uusi verollinen a-ostohinta lasketaan kertoimen sijaan alv0 a-ostohinnasta.", "0"},
    {"Tuoteloki", "Loki tuotekohtaisista muutoksista",
     "Kirjoittaa tuotemuutoksista yksityiskohtaisen lokin", "0"},
    {"Eiverkkokauppaa", "Älä päivitä verkkokauppaa",
     "Verkkokaupan muutoksia ei vielä tehdä. Tarpeen silloin jos ajo ajetaan ennakkoon", "0"},
    {"asiakashinnasto", "Asiakashinnasto", "Ajetaan nettoasiakashinnastot hinta1:n kertoimella",
     "0"},
    {"WebKauppaAsHinCheckBox", "Verkkokaupan",
     "Ajetaan verkkokaupan asiakashinnastot hinta1:n kertoimella", "0"},
    {"Kampanjat", "Kampanja", "Ajetaan kampanjat kertoimella", "0"},
    {"MaaraAle", "Määräale", "Ajetaan määräalennukset kertoimella", "0"},
    {"MtCheckBox", "Myyntitilaus", "", "0"},
    {"OtCheckBox", "Ostotilaus", "", "0"},
    {"Tuotteet", "Tuotteet ja ryhmät", "Ajetaan tuotehinnat, veroluokat ja ryhmien veroluokat",
     "1"},
    {"cbVakioLaskutus", "Toistuvaislaskutus", "Päivitetään vakio/kausilaskutus myös", "0"},
    {"chkCheckWebstoreCompliantProductIds", "T.kooditarkastus",
     "Tarkasta verkkokauppatuotteiden tuotekoodit kiellettyjen merkkien varalta.\nTarkastus "
     "tehdään KAIKILLE kannan tuotteille, ei pelkästään taksavaiheessa mukana oleville.",
     "0"},
    {"PyoristysSaantoRadioGroup", "Pyöristyssääntö", "", "0"},
    {"PyoristysRadioGroup", "Pyöristys (senttiä)", "", "1"},
};

std::vector<Control> allControls() {
    static std::vector<std::string> names;  // what the pointers below point to
    names.reserve(3 * 9);
    std::vector<Control> all(std::begin(kControls), std::end(kControls));
    for (int level = 1; level <= 9; ++level) {
        const std::string n = std::to_string(level);
        all.push_back({names.emplace_back("Hinta" + n + "Edit").c_str(), "", "", "1"});
        all.push_back({names.emplace_back("HintaLahde" + n).c_str(), "", "", "0"});
        all.push_back(
            {names.emplace_back("SailytaAlv0_CheckBox" + n).c_str(), "", kLevelKeepHint, "0"});
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
        EXPECT_FALSE(control->accessibleName().isEmpty() && captionOf(*control).isEmpty());
    }
    listed.sort();
    EXPECT_EQ(framework::controlValues(form).keys(), listed) << "a control that no table lists";
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
