#include "vatchange/definition/definition_fields.h"

#include <algorithm>

namespace vatchange {

namespace {

using namespace Qt::StringLiterals;
using D = ChangeDefinition;

constexpr int kGroupDigits = 11;
constexpr int kClassDigits = 3;
// More than a double near 1 has (17), so that what a calculator shows can be pasted.
constexpr int kCoefficientDecimals = 40;
constexpr int kLimitDecimals = 2;
constexpr double kHighestLimit = 999999999999.99;
constexpr int kMostProductsDigits = 9;
constexpr int kPercentDecimals = 4;
constexpr double kHighestPercent = 999999.0;

struct Texts {
    QString caption = {};
    QString hint = {};
    QString label = {};           // the caption where none is given
    QString accessibleName = {};  // likewise
};

ChangeField made(const QString& control, FieldKind kind, AnyDefinitionMember member,
                 const Texts& texts) {
    ChangeField field{.control = control, .kind = kind, .member = std::move(member)};
    field.caption = texts.caption;
    field.hint = texts.hint;
    field.label = texts.label.isEmpty() ? texts.caption : texts.label;
    field.accessibleName = texts.accessibleName.isEmpty() ? texts.caption : texts.accessibleName;
    return field;
}

ChangeField check(const QString& control, DefinitionMember<bool> member, const Texts& texts) {
    return made(control, FieldKind::Check, std::move(member), texts);
}

ChangeField vatClass(const QString& control, DefinitionMember<int> member, const Texts& texts) {
    ChangeField field = made(control, FieldKind::Class, std::move(member), texts);
    field.digits = kClassDigits;
    return field;
}

ChangeField coefficient(const QString& control, DefinitionMember<double> member,
                        const Texts& texts) {
    ChangeField field = made(control, FieldKind::Coefficient, std::move(member), texts);
    field.digits = kCoefficientDecimals;
    return field;
}

template <typename Enumeration>
ChangeField choice(const QString& control, DefinitionMember<Enumeration> member,
                   const QStringList& items, const QString& caption) {
    ChangeField field = made(control, FieldKind::Choice, std::move(member), {.caption = caption});
    field.items = items;
    return field;
}

// The controls of one kind of group: `stem` begins their names.
void addRestriction(std::vector<ChangeField>& fields, GroupRestriction D::*kind,
                    const QString& stem, const QString& caption, const QString& label) {
    const QString name = caption.chopped(1);  // without "#"
    const auto number = [&](const QString& control, auto member, const QString& accessibleName) {
        ChangeField field = made(control, FieldKind::Number, DefinitionMember<qint64>(member),
                                 {.accessibleName = name + accessibleName});
        field.digits = kGroupDigits;
        fields.push_back(field);
    };
    fields.push_back(check(stem + u"CheckBox"_s, [kind](auto& d) -> auto& { return (d.*kind).on; },
                           {.caption = caption, .label = label}));
    number(
        stem + u"AlkuEdit"_s, [kind](auto& d) -> auto& { return (d.*kind).first; }, u", alku"_s);
    number(
        stem + u"LoppuEdit"_s, [kind](auto& d) -> auto& { return (d.*kind).last; }, u", loppu"_s);
    fields.push_back(
        made(u"edt"_s + stem + u"Ignore"_s, FieldKind::IgnoreList,
             DefinitionMember<QString>([kind](auto& d) -> auto& { return (d.*kind).ignored; }),
             {.caption = u"Ulosrajattavat ryhmät"_s,
              .hint = u"Ryhmät, joita ei oteta mukaan. Ilmoita pilkkueroteltu luettelo."_s,
              .label = u"ulosrajatut"_s,
              .accessibleName = name + u", ulosrajattavat ryhmät"_s}));
}

void addRestrictions(std::vector<ChangeField>& fields) {
    addRestriction(fields, &D::subGroup, u"Aliryhma"_s, u"Aliryhmä#"_s, u"Aliryhmät"_s);
    addRestriction(fields, &D::productGroup, u"Tuoteryhma"_s, u"Tuoteryhmä#"_s, u"Tuoteryhmät"_s);
    addRestriction(fields, &D::mainGroup, u"Paaryhma"_s, u"Pääryhmä#"_s, u"Pääryhmät"_s);
    fields.push_back(check(u"TuotenroCheckBox"_s, &D::productRangeOn,
                           {.caption = u"Tuotenro (ei käytössä)"_s, .label = u"Tuotenumerot"_s}));
    fields.push_back(made(u"TuotenroAlkuEdit"_s, FieldKind::Text,
                          DefinitionMember<QString>(&D::productFirst),
                          {.accessibleName = u"Tuotenro, alku"_s}));
    fields.push_back(made(u"TuotenroLoppuEdit"_s, FieldKind::Text,
                          DefinitionMember<QString>(&D::productLast),
                          {.accessibleName = u"Tuotenro, loppu"_s}));
    fields.push_back(
        made(kCustomerGroupsControl, FieldKind::Groups,
             DefinitionMember<std::vector<int>>(&D::customerGroups),
             {.caption = u"As. ryhmät"_s,
              .hint = u"Valitse tästä päivitettävät asiakasryhmät (ei valittu yhtään = kaikki)"_s,
              .label = u"Asiakasryhmät"_s}));
}

void addClasses(std::vector<ChangeField>& fields) {
    fields.push_back(
        vatClass(kSourceClassControl, &D::sourceClass, {.caption = u"Vanha luokka"_s}));
    fields.push_back(vatClass(kTargetClassControl, &D::targetClass,
                              {.caption = u"Uusi luokka"_s,
                               .hint = u"Ilmoita uuden verokannan luokka. Jos muutat vain hintoja, "
                                       "muttet luokkaa laita uusi samaksi kuin vanha"_s}));
    ChangeField day =
        made(kChangeDayControl, FieldKind::Date, DefinitionMember<QDate>(&D::changeDay),
             {.caption = u"Muutospäivä"_s,
              .hint = u"Päivä, josta alkaen uusi verokanta on voimassa. Sitä ennen päättyneitä "
                      "kampanjoita ja määräalennuksia ei muuteta.\r\nTyhjä: 1.9.2024."_s});
    day.optional = true;
    fields.push_back(day);
}

void addSafetyLimits(std::vector<ChangeField>& fields) {
    ChangeField products =
        made(kMostProductsControl, FieldKind::MostCount,
             DefinitionMember<std::optional<qint64>>(&D::mostProducts),
             {.caption = u"Tuotteita enintään"_s,
              .hint = u"Turvaraja: jos rajaukset valitsevat useampia tuotteita, määrittelyä ei "
                      "ajeta lainkaan.\r\nTyhjä: ei rajaa."_s,
              .label = u"Turvaraja, tuotteita enintään"_s,
              .accessibleName = u"Turvaraja, tuotteita enintään"_s});
    products.digits = kMostProductsDigits;
    products.optional = true;
    fields.push_back(products);
    ChangeField percent =
        made(kMostPercentControl, FieldKind::MostAmount,
             DefinitionMember<std::optional<double>>(&D::mostPercent),
             {.caption = u"Muutos enintään %"_s,
              .hint = u"Turvaraja: tuote, jonka jokin hinta muuttuisi enemmän kuin näin monta "
                      "prosenttia tai nollaksi, ohitetaan.\r\nTyhjä: ei rajaa."_s,
              .label = u"Turvaraja, muutos enintään %"_s,
              .accessibleName = u"Turvaraja, muutos enintään prosenttia"_s});
    percent.digits = kPercentDecimals;
    percent.highest = kHighestPercent;
    percent.optional = true;
    fields.push_back(percent);
}

void addPrices(std::vector<ChangeField>& fields) {
    for (int level = 1; level <= kPriceLevels; ++level) {
        const QString name = u"Hinta "_s + QString::number(level);
        const auto index = static_cast<std::size_t>(level - 1);
        fields.push_back(
            coefficient(coefficientControl(level),
                        [index](auto& d) -> auto& { return d.levels[index].coefficient; },
                        {.accessibleName = name + u", kerroin"_s}));
        fields.push_back(made(
            sourceControl(level), FieldKind::Source,
            DefinitionMember<QString>([index](auto& d) -> auto& { return d.levels[index].source; }),
            {.accessibleName = name + u", hinnan lähde"_s}));
        fields.push_back(check(
            keepVat0Control(level), [index](auto& d) -> auto& { return d.levels[index].keepVat0; },
            {.hint = u"Tuotetiedoissa säilytetään alv0 hinta"_s,
             .accessibleName = name + u", säilytä alv0 hinta"_s}));
    }
    fields.push_back(
        coefficient(kPurchaseControl, &D::purchaseCoefficient, {.caption = u"Ostohinta"_s}));
    fields.push_back(check(u"SailytaAlv0_CheckBoxOstohinta"_s, &D::keepVat0Purchase,
                           {.caption = u"Säilytä alv0 hinta"_s,
                            .accessibleName = u"Ostohinta, säilytä alv0 hinta"_s}));
    fields.push_back(coefficient(kLastPurchaseControl, &D::lastPurchaseCoefficient,
                                 {.caption = u"Viim. ostohinta"_s}));
    fields.push_back(check(u"SailytaAlv0_CheckBoxViimOstohinta"_s, &D::keepVat0LastPurchase,
                           {.caption = u"Säilytä alv0 hinta"_s,
                            .accessibleName = u"Viim. ostohinta, säilytä alv0 hinta"_s}));

    ChangeField limit =
        made(u"PriceChangeLimitEdit"_s, FieldKind::Amount,
             DefinitionMember<double>(&D::priceChangeLimit),
             {.caption = u"Hinnanmuutosraja"_s,
              .hint = u"Muuttaa tuotteen verolliset hinnat vain hintatasoilta, joiden hinta on "
                      "vähintään hinnanmuutosraja."_s});
    limit.digits = kLimitDecimals;
    limit.highest = kHighestLimit;
    fields.push_back(limit);
    addSafetyLimits(fields);
    fields.push_back(check(
        u"DoNotUpdateCustomerPricelistVAT0"_s, &D::keepCustomerPricelistVat0,
        {.caption = u"Älä päivitä asiakashinnaston alv0 hintaa"_s,
         .hint = u"Asiakashinnaston alv0 hintaa ei päivitetä vaikka verollinen hinta muuttuisi."_s,
         .label = u"Asiakashinnaston alv0 hinta päivitetään"_s}));
    fields.push_back(check(u"VieHr"_s, &D::writeShelfLabels,
                           {.caption = u"Vie hyllynreunaetiketteihin"_s,
                            .hint = u"Muutettu tuote kirjoitetaan HR etiketteihin."_s,
                            .label = u"Hyllynreunaetiketit"_s}));
}

void addOrders(std::vector<ChangeField>& fields) {
    fields.push_back(
        coefficient(u"MtKerroinEdit"_s, &D::salesOrderCoefficient,
                    {.caption = u"Myyntitilauskerroin"_s,
                     .hint = u"Uuden verollisen ahinnan laskemiseen käytettävä kerroin.\r\n"
                             "Jos verollinen ahinta ei muutu, jätä kertoimeksi 1."_s}));
    fields.push_back(
        check(u"SailytaAlv0_CheckBoxMT"_s, &D::salesOrderFromVat0,
              {.caption = u"Laske verollinen alv0:sta"_s,
               .hint = u"Uusi verollinen a-hinta lasketaan kertoimen sijaan alv0 a-hinnasta."_s,
               .accessibleName = u"Myyntitilaus, laske verollinen alv0:sta"_s}));
    fields.push_back(made(u"MTToimPaivaRajaus"_s, FieldKind::Date,
                          DefinitionMember<QDate>(&D::salesOrderDeliveryLimit),
                          {.caption = u"Toimituspäivä alkaen"_s,
                           .hint = u"Ajetaan vaan ne joiden toimituspäivä on tämä tai tuoreempi"_s,
                           .label = u"toimituspäivä alkaen"_s}));
    fields.push_back(
        coefficient(u"OtKerroinEdit"_s, &D::purchaseOrderCoefficient,
                    {.caption = u"Ostotilauskerroin"_s,
                     .hint = u"Uuden verollisen a-ostohinnan laskemiseen käytettävä kerroin.\r\n"
                             "Jos verollinen a-ostohinta ei muutu, jätä kertoimeksi 1."_s}));
    fields.push_back(check(
        u"SailytaAlv0_CheckBoxOT"_s, &D::purchaseOrderFromVat0,
        {.caption = u"Laske verollinen alv0:sta"_s,
         .hint = u"Uusi verollinen a-ostohinta lasketaan kertoimen sijaan alv0 a-ostohinnasta."_s,
         .accessibleName = u"Ostotilaus, laske verollinen alv0:sta"_s}));
}

void addOptions(std::vector<ChangeField>& fields) {
    fields.push_back(check(u"Tuotteet"_s, &D::products,
                           {.caption = u"Tuotteet ja ryhmät"_s,
                            .hint = u"Ajetaan tuotehinnat, veroluokat ja ryhmien veroluokat"_s}));
    fields.push_back(check(u"Kampanjat"_s, &D::campaigns,
                           {.caption = u"Kampanja"_s,
                            .hint = u"Ajetaan kampanjat kertoimella"_s,
                            .label = u"Kampanjat"_s}));
    fields.push_back(check(u"MaaraAle"_s, &D::quantityDiscounts,
                           {.caption = u"Määräale"_s,
                            .hint = u"Ajetaan määräalennukset kertoimella"_s,
                            .label = u"Määräalennukset"_s}));
    fields.push_back(check(
        u"cbVakioLaskutus"_s, &D::recurringInvoicing,
        {.caption = u"Toistuvaislaskutus"_s, .hint = u"Päivitetään vakio/kausilaskutus myös"_s}));
    fields.push_back(
        check(u"chkCheckWebstoreCompliantProductIds"_s, &D::checkProductCodes,
              {.caption = u"T.kooditarkastus"_s,
               .hint = u"Tarkasta verkkokauppatuotteiden tuotekoodit kiellettyjen merkkien "
                       "varalta.\r\nTarkastus tehdään KAIKILLE kannan tuotteille, ei pelkästään "
                       "taksavaiheessa mukana oleville."_s,
               .label = u"Tuotekoodien tarkastus"_s}));
    fields.push_back(check(u"asiakashinnasto"_s, &D::customerPriceLists,
                           {.caption = u"Asiakashinnasto"_s,
                            .hint = u"Ajetaan nettoasiakashinnastot hinta1:n kertoimella"_s,
                            .label = u"Asiakashinnastot"_s}));
    fields.push_back(check(u"WebKauppaAsHinCheckBox"_s, &D::webShopCustomerPriceLists,
                           {.caption = u"Verkkokaupan"_s,
                            .hint = u"Ajetaan verkkokaupan asiakashinnastot hinta1:n kertoimella"_s,
                            .label = u"Verkkokaupan asiakashinnastot"_s}));
    fields.push_back(check(u"MtCheckBox"_s, &D::salesOrders,
                           {.caption = u"Myyntitilaus"_s, .label = u"Myyntitilaukset"_s}));
    fields.push_back(check(u"OtCheckBox"_s, &D::purchaseOrders,
                           {.caption = u"Ostotilaus"_s, .label = u"Ostotilaukset"_s}));
}

void addRoundingAndLog(std::vector<ChangeField>& fields) {
    fields.push_back(choice<RoundingRule>(u"PyoristysSaantoRadioGroup"_s, &D::roundingRule,
                                          {u"Normaali"_s, u"Aina ylös"_s, u"Aina alas"_s},
                                          u"Pyöristyssääntö"_s));
    fields.push_back(choice<RoundingStep>(u"PyoristysRadioGroup"_s, &D::roundingStep,
                                          {u"0,1 "_s, u"1"_s, u"5"_s, u"10"_s, u"0,01"_s},
                                          u"Pyöristys (senttiä)"_s));
    fields.push_back(check(u"Tuoteloki"_s, &D::productLog,
                           {.caption = u"Loki tuotekohtaisista muutoksista"_s,
                            .hint = u"Kirjoittaa tuotemuutoksista yksityiskohtaisen lokin"_s,
                            .label = u"Tuotekohtainen loki"_s}));
    fields.push_back(check(u"Eiverkkokauppaa"_s, &D::leaveWebShop,
                           {.caption = u"Älä päivitä verkkokauppaa"_s,
                            .hint = u"Verkkokaupan muutoksia ei vielä tehdä. Tarpeen silloin jos "
                                    "ajo ajetaan ennakkoon"_s,
                            .label = u"Verkkokauppa päivitetään"_s}));
}

}  // namespace

QString coefficientControl(int level) {
    return QStringLiteral("Hinta%1Edit").arg(level);
}

QString sourceControl(int level) {
    return QStringLiteral("HintaLahde%1").arg(level);
}

QString keepVat0Control(int level) {
    return QStringLiteral("SailytaAlv0_CheckBox%1").arg(level);
}

const std::vector<ChangeField>& changeFields() {
    static const std::vector<ChangeField> kFields = [] {
        std::vector<ChangeField> fields;
        addRestrictions(fields);
        addClasses(fields);
        addPrices(fields);
        addOrders(fields);
        addOptions(fields);
        addRoundingAndLog(fields);
        return fields;
    }();
    return kFields;
}

const ChangeField& changeField(const QString& control) {
    const auto& fields = changeFields();
    const auto found =
        std::find_if(fields.begin(), fields.end(),
                     [&control](const ChangeField& field) { return field.control == control; });
    Q_ASSERT(found != fields.end());
    return *found;
}

}  // namespace vatchange
