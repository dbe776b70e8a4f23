#include "search/field_titles.h"

namespace search {

namespace {

struct Title {
    const char16_t* field;
    const char16_t* title;
};

constexpr Title kTitles[] = {
    {u"ale1", u"Alennus 1"},
    {u"ale2", u"Alennus 2"},
    {u"ale3", u"Alennus 3"},
    {u"ale4", u"Alennus 4"},
    {u"Alv2", u"Alv 2"},
    {u"ANNOSHINTA", u"Annoshinta"},
    {u"ANNOSKOKO", u"Annoskoko"},
    {u"AsiakasHinnastoEsto", u"Ei asiakashinnastoon"},
    {u"AutomTilattava", u"Automaattisesti tilattava"},
    {u"BruttoPaino", u"Bruttopaino"},
    {u"EIKASSALLA", u"Ei kassalla"},
    {u"EilisetRyhma", u"Eilisten ryhmä"},
    {u"ExtraId", u"Lisätunniste"},
    {u"Havikki", u"Hävikki"},
    {u"HavikkiPros", u"Hävikki-%"},
    {u"HINTA", u"Hinta"},
    {u"HINTA3", u"Hinta 3"},
    {u"HINTA4", u"Hinta 4"},
    {u"HINTA5", u"Hinta 5"},
    {u"HINTA6", u"Hinta 6"},
    {u"HINTA7", u"Hinta 7"},
    {u"HINTA8", u"Hinta 8"},
    {u"HINTA9", u"Hinta 9"},
    {u"HintaMuutosEsto", u"Hinnanmuutosesto"},
    {u"HrEtikettiMalli", u"Hyllyreunaetiketin malli"},
    {u"hretik", u"Hyllyreunaetiketti"},
    {u"HrKoko", u"Etiketin koko"},
    {u"HrMalli", u"Etiketin malli"},
    {u"KAKSOISHINTA", u"Hinta 2"},
    {u"KeittioRyhma", u"Keittiöryhmä"},
    {u"Keskusvarasto", u"Keskusvarasto"},
    {u"LVV", u"Alv"},
    {u"maaraAle", u"Määräale"},
    {u"Maksimikerroin", u"Enimmäiskerroin"},
    {u"mp", u"MP"},
    {u"MUUTETTUPVM", u"Muutettu"},
    {u"muutettutime", u"Muutettu klo"},
    {u"MuutosKlo", u"Muutosklo"},
    {u"MuutosPvm", u"Muutospvm"},
    {u"MYks", u"Myyntiyksikkö"},
    {u"MYYNTILINKITYS", u"Myyntilinkitys"},
    {u"Nettohinta", u"Nettohinta"},
    {u"Nettohintainen", u"Nettohintainen"},
    {u"NIMI", u"Nimi"},
    {u"Nimi2", u"Nimi 2"},
    {u"NIMIKASSALLA", u"Nimi kassalla"},
    {u"Nro", u"Nro"},
    {u"NUMERO", u"Numero"},
    {u"OhEiNay", u"Ostohinta ei näy"},
    {u"OnWebKaupassa", u"Verkkokaupassa"},
    {u"OstoHVaihtelu", u"Ostohinnan vaihtelu"},
    {u"OstohintaEiNay", u"Ostohinta ei näy"},
    {u"OstokertymaEsto", u"Ei ostokertymään"},
    {u"ostovero", u"Ostojen alv"},
    {u"PAARYHMA", u"Pääryhmä"},
    {u"PalveluTunniste", u"Palvelutunniste"},
    {u"Passiivinen", u"Passiivinen"},
    {u"PERUSTETTUPVM", u"Perustettu"},
    {u"Poistuva", u"Poistuva"},
    {u"RESEPTI", u"Resepti"},
    {u"RYHMA", u"Tuoteryhmä"},
    {u"RyhmaLaji", u"Ryhmälaji"},
    {u"RyhmaTyyppi", u"Ryhmätyyppi"},
    {u"SaatavillaPvm", u"Saatavilla"},
    {u"SeurRyhma", u"Seurantaryhmä"},
    {u"TarraArkki", u"Tarra-arkki"},
    {u"TavoiteKatePros", u"Tavoitekate-%"},
    {u"TavoiteKatePros2", u"Tavoitekate-% 2"},
    {u"Tehot", u"Tehot"},
    {u"Tili", u"Tili"},
    {u"TILKIELTO", u"Tilauskielto"},
    {u"TOIMITTAJA", u"Toimittaja"},
    {u"TOIMTUNNUS", u"Toimittajan tuotetunnus"},
    {u"TrBits", u"Tuoteryhmän bitit"},
    {u"TUOTELINKITYS", u"Tuotelinkitys"},
    {u"TuotePerhe", u"Tuoteperhe"},
    {u"TuoteRyhma", u"Tuoteryhmä"},
    {u"Valmistaja", u"Valmistaja"},
    {u"Varalla", u"Varalla"},
    {u"VARASTOARVOTON", u"Varastoarvoton"},
    {u"VARASTOKERROIN", u"Varastokerroin"},
    {u"VARASTOYKS", u"Varastoyksikkö"},
    {u"Vari", u"Väri"},
    {u"Verkkokaupassa", u"Verkkokaupassa"},
    {u"Verkkokauppa", u"Verkkokauppa"},
    {u"vero", u"Alv"},
    {u"VYks", u"Varastoyksikkö"},
    {u"WebKauppaJarjestys", u"Verkkokauppa järjestys"},
    {u"AliRyhma", u"Aliryhmä"},
};

}  // namespace

QString fieldTitle(const QString& field) {
    for (const Title& known : kTitles) {
        if (field.compare(QStringView(known.field), Qt::CaseInsensitive) == 0)
            return QString::fromUtf16(known.title);
    }
    return {};
}

}  // namespace search
