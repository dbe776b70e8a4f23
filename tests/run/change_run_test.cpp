// Change log lines of whole runs. tests/acceptance compares the stored values with a model.
#include <gtest/gtest.h>

#include "tests/run/run_company.h"

namespace {

using test::plainDefinition;
using test::RunCompany;
using vatchange::ChangeDefinition;
using vatchange::RunResult;

TEST(ChangeRun, LogsEveryStep) {
    RunCompany company;
    company.execAll(
        {"insert into TUOTE (NUMERO, NIMI, AliRyhma, LVV, OSTOVERO, HINTA, HINTA3, KESKIHINTA, "
         "VIIMOSTOHINTA, maaraAle, Verkkokauppa) values ('A 1', 'Nimi', 1, 3, 3, 12.4, 5.125, 4, "
         "5, 1, 1)",
         "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'A 1', 12.4)",
         "insert into ASALE (AsiakasNumero, Tuote, Hinta, HintaAlv0, OstoHinta, AsikasTyyppi, "
         "Tyyppi, Maara) values (1, 'A 1', 12.4, 10, 0.1, 0, 1, 1.5), "
         "(7, 'A 1', 99.9, 80, 2, 1, 1, 2)",
         "insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta, Ostohinta) values ('A 1', 3, 9.9, 2)",
         "insert into VAKIOLASKUTUS (Asiakas, Tuote, ahinta, Yhteensa, ostohinta) values (5, "
         "'A 1', 12.4, 99.9, 2)",
         "insert into MAARAALE (Numero, Nimi, Arvo, Ostohinta) values (1, 'Kimppa', 9.5, 2)"});
    ChangeDefinition definition = plainDefinition();
    definition.subGroup = {true, 0, 0, QStringLiteral("5,x")};
    definition.levels[1] = {1.0, QStringLiteral("hinta3"), false};
    definition.levels[2] = {test::k24To25_5, QStringLiteral("hinta3"), false};
    definition.purchaseCoefficient = 1.25;
    definition.lastPurchaseCoefficient = 0.5;
    definition.customerPriceLists = definition.campaigns = true;
    definition.recurringInvoicing = definition.quantityDiscounts = true;
    definition.salesOrders = definition.purchaseOrders = definition.checkProductCodes = true;
    definition.productLog = true;
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_EQ(company.ports.lines,
              (QStringList{
                  "Huomaa: ulosrajattavissa ryhmissä (edtAliryhmaIgnore) on kohta, joka ei ole "
                  "ryhmän numero ja jota ei oteta huomioon: x",
                  "Huomaa: ViimOstohintaEdit=0.5 (Viim. ostohinta): kerroin ei ole välillä 0.9 - "
                  "1.25",
                  "Aloitetaan taksavaiheet, parametrit ->",
                  "Rajaus: ( AliRyhma not in ( 5 )) AND ( lvv = 3 OR alv2 = 3 OR ostovero = 3) "
                  "Pyöristys: Normaali, 1 senttiä",
                  "Aloitetaan taksavaihe",
                  "Aloitetaan asiakashinnastojen päivitys",
                  "Asiakas 1 tuote: A 1 määrä: 1.5  hinta: 12.4000€  -> 12.5500€   hintaalv0: "
                  "10.0000€  -> 10.0000€  ostohinta: 0.1000€  -> 0.1250€ ",
                  // 101.11 / 1.255 = 80.56573...
                  "As.ryhmä 7 tuote: A 1 määrä: 2  hinta: 99.9000€  -> 101.1100€   hintaalv0: "
                  "80.0000€  -> 80.5657€  ostohinta: 2.0000€  -> 2.5000€ ",
                  " ( 2 rivi)",
                  "Aloitetaan kampanjoiden päivitys",
                  "Tehdään kampanjat (tuote,rivinro; vanha myynti; uusi myynti; vanha osto; uusi "
                  "osto)",
                  "Kampanja: A 1 3;  9.90;10.02; 2.00; 2.50",
                  "Aloitetaan vakiolaskutusten päivitys",
                  "Vakiolaskutus (Asiakas, tuote: vanhahinta;uusihinta;vanha "
                  "yht;uusiyht;vanhaosto;uusiosto)",
                  "Asiakas 5, tuote A 112.40; 12.55; 99.90; 101.11;  2.00; 2.50",
                  "Aloitetaan määräalejen päivitys",
                  "Määräale Kimppa ( 1 ) arvo: 9.5000 -> 9.6100 ostohinta: 2.0000 -> 2.5000",
                  "Aloitetaan tuoteryhmien päivitys",
                  "Tryhmä alv1 3 -> 6",
                  "Tryhmä alv2 3 -> 6",
                  "Tryhmä ostoalv 3 -> 6",
                  "tarkastetaan myymalahinnat",
                  "update myymalahinnat:  hinta1alv0 = hinta1/1.255, hinta2alv0 = hinta2/1.255, "
                  "hinta3alv0 = hinta3/1.255",
                  "Aloitetaan tuotteiden päivitys",
                  // 12.4 x 1.0120967741935485 = 12.55; 5.125 x it = 5.18699...
                  "Tuote: A 1 VANHAHINTA(=hinta )1=12.400, UUSIHINTA=12.550 VANHAHINTA(=hinta3 "
                  ")2=5.125, UUSIHINTA=5.125 VANHAHINTA(=hinta3 )3=5.125, UUSIHINTA=5.190 "
                  "VANHAOSTOHINTA=4.000, UUSIOSTOHINTA=5.000 VANHAVIIMOH=5.000, UUSIVIIMOH=2.500",
                  "Tuotetiedot muutettu ( 1 kpl)",
                  "Aloitetaan myyntitilausten päivitys",
                  "Myyntitilaukset konvertoitu.",
                  "Aloitetaan ostotilausten päivitys",
                  "Ostotilaukset konvertoitu.",
                  "Aloitetaan Verkkokauppa -valinnan poisto verkkokauppatuotteilta, joiden "
                  "tuotekoodit sisältävät kiellettyjä merkkejä",
                  "A 1;Nimi",
                  "Verkkokauppa -valinta poistettiin 1 tuotteelta",
                  // five price rows, the store price, the product and its web shop mark, twice each
                  "Tarkastus: muutoksia 10; vanhaa alv-luokkaa ei jäänyt.",
              }));

    // a rerun finds nothing left to change
    const auto changed = company.everything();
    company.setNow(QDateTime(QDate(2024, 9, 2), QTime(8, 0)));
    EXPECT_EQ(company.run(definition).products, 0);
    EXPECT_EQ(company.everything(), changed);
}

TEST(ChangeRun, GoesOnWhenTheDatabaseRefusesStorePrices) {
    RunCompany company;
    company.execAll({"insert into TUOTE (NUMERO, LVV, HINTA) values ('A1', 3, 12.4)",
                     "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'A1', 12.4)"});
    ChangeDefinition definition = plainDefinition();
    definition.levels[0].keepVat0 = true;
    definition.roundingStep = vatchange::RoundingStep::Five;
    const auto before = company.everything();
    const RunResult result = company.run(definition);
    EXPECT_EQ(result.failedSteps, 1);
    EXPECT_EQ(result.products, 1);
    EXPECT_EQ(company.ports.linesWith("Virhe alvien muutoksessa ->"), 1);
    EXPECT_EQ(company.everything().at("MYYMALAHINNAT"), before.at("MYYMALAHINNAT"));
}

}  // namespace
