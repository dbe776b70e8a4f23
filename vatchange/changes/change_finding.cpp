#include "vatchange/changes/change_finding.h"

namespace vatchange {

QString findingName(ChangeFinding finding) {
    switch (finding) {
        case ChangeFinding::FarFromExpected:
            return QStringLiteral("Poikkeaa odotetusta");
        case ChangeFinding::NotPositive:
            return QStringLiteral("Nolla tai negatiivinen");
        case ChangeFinding::PriceUnchanged:
            return QStringLiteral("Hinta ennallaan");
        case ChangeFinding::LevelOrder:
            return QStringLiteral("Hintojen järjestys");
        case ChangeFinding::ProductPassedOver:
            return QStringLiteral("Ohitettu tuote");
        case ChangeFinding::OrderPassedOver:
            return QStringLiteral("Ohitettu tilaus");
        case ChangeFinding::OrderAtRisk:
            return QStringLiteral("Tilaus tarkistettava");
        case ChangeFinding::LeftBehind:
            return QStringLiteral("Vanha alv-luokka");
        case ChangeFinding::ChangedSince:
            return QStringLiteral("Muutettu ajon jälkeen");
        case ChangeFinding::OtherThanRehearsed:
            return QStringLiteral("Toisin kuin koeajossa");
        case ChangeFinding::Undone:
            break;
    }
    return QStringLiteral("Peruttu");
}

QString findingHint(ChangeFinding finding) {
    switch (finding) {
        case ChangeFinding::FarFromExpected:
            return QStringLiteral(
                "Uusi hinta on yli pyöristysaskelen päässä siitä, mitä kerroin tekee vanhasta "
                "hinnasta");
        case ChangeFinding::NotPositive:
            return QStringLiteral("Hinta muuttui nollaksi tai negatiiviseksi tai pysyi sellaisena");
        case ChangeFinding::PriceUnchanged:
            return QStringLiteral(
                "Tuotteen alv-luokka vaihtui, mutta hinta ei: raja, lähde, kerroin tai pyöristys");
        case ChangeFinding::LevelOrder:
            return QStringLiteral(
                "Hintatasojen järjestys vaihtui, tai hinta jäi alle ostohinnan, vaikka ennen ei");
        case ChangeFinding::ProductPassedOver:
            return QStringLiteral("Tuote, joka olisi pitänyt muuttaa mutta ohitettiin");
        case ChangeFinding::OrderPassedOver:
            return QStringLiteral("Avoin tilaus, jonka rivejä ei muutettu");
        case ChangeFinding::OrderAtRisk:
            return QStringLiteral(
                "Muutettu tilausrivi, josta osa on toimitettu tai joka toimitetaan ennen "
                "muutospäivää");
        case ChangeFinding::LeftBehind:
            return QStringLiteral("Vanha alv-luokka jäi: rajaus, ohitus tai taulu ei valittu");
        case ChangeFinding::ChangedSince:
            return QStringLiteral("Kentän arvo on muu kuin mihin ajo sen jätti");
        case ChangeFinding::OtherThanRehearsed:
            return QStringLiteral("Ajo muutti tämän toisin kuin koeajo");
        case ChangeFinding::Undone:
            break;
    }
    return QStringLiteral("Muutos on peruttu");
}

}  // namespace vatchange
