#include <gtest/gtest.h>

#include "tests/run/run_company.h"

namespace {

using test::k24To25_5;
using test::plainDefinition;
using test::RunCompany;
using vatchange::ChangeDefinition;
using vatchange::RunResult;

void addProduct(RunCompany& company, const QString& number, const QString& more,
                const QString& values) {
    company.exec(QStringLiteral("insert into TUOTE (NUMERO, NIMI, %1) values ('%2', 'Nimi %2', %3)")
                     .arg(more, number, values));
}

TEST(ChangeRun, ProductsGroupsAndTheirCompany) {
    RunCompany company;
    const auto columns = QStringLiteral(
        "AliRyhma, LVV, ALV2, OSTOVERO, HINTA, KAKSOISHINTA, HINTA3, HINTA4, KESKIHINTA, "
        "ANNOSHINTA, VIIMOSTOHINTA, HRKPL, VERKKOKAUPPA");
    addProduct(company, "A1", columns, "1, 3, 0, 3, 12.4, 99.9, 5.125, 3, 4, 0.3, 5, 2, 1");
    addProduct(company, "A2", columns, "1, 2, 3, 2, 99.9, 20, 9.99, 3, 8, 0, 6, 0, 1");
    addProduct(company, "A3", columns, "1, 2, 2, 2, 12.4, 20, 12, 3, 8, 0, 6, 5, 1");
    addProduct(company, "A4", columns, "5, 3, 3, 3, 12.4, 20, 12, 3, 8, 0, 6, 5, 1");
    company.exec(
        "insert into HR (Tyyppi, Tuote, Maara, H1, MaaraAleHinta, Voimassa) values "
        "(1, 'A1', 9, 7, 8, '2024-01-01')");
    company.exec("insert into HR (Tyyppi, Tuote, Maara, H1) values (2, 'A1', 9, 7)");
    company.exec("insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'A1', 12.4)");
    company.exec("insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (10, 3, 0, 3)");
    company.exec("insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (11, 3, 3, 3)");
    company.exec("insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (12, 2, 3, 2)");

    ChangeDefinition definition = plainDefinition();
    definition.subGroup = {true, 0, 0, QStringLiteral("5,x")};
    definition.productGroup = {false, 11, 0, {}};
    definition.levels[1] = {1.0, QStringLiteral("hinta3"), false};
    definition.levels[2] = {k24To25_5, QStringLiteral("hinta3"), false};
    definition.priceChangeLimit = 5.0;
    definition.purchaseCoefficient = 1.25;
    definition.lastPurchaseCoefficient = 0.5;
    definition.productLog = true;
    const auto untouched = company.everything();
    const RunResult result = company.run(definition);

    EXPECT_TRUE(result.clean());
    EXPECT_EQ(result.products, 2);
    const auto a1 = [&](const char* column) {
        return company.number(
            QStringLiteral("select %1 from TUOTE where NUMERO='A1'").arg(QLatin1String(column)));
    };
    EXPECT_EQ(a1("HINTA"), 12.55);         // 12.4 x 1.0120967741935485, to the cent
    EXPECT_EQ(a1("KAKSOISHINTA"), 5.125);  // the third level's old price, unrounded
    EXPECT_EQ(a1("HINTA3"), 5.19);         // 5.125 x k = 5.18699...
    EXPECT_EQ(a1("HINTA4"), 3.0);          // no source
    EXPECT_EQ(a1("KESKIHINTA"), 5.0);
    EXPECT_EQ(a1("ANNOSHINTA"), 0.375);
    EXPECT_EQ(a1("VIIMOSTOHINTA"), 2.5);
    EXPECT_EQ(a1("LVV"), 6);
    EXPECT_EQ(a1("ALV2"), 0);
    EXPECT_EQ(a1("OSTOVERO"), 6);
    EXPECT_EQ(company.text("select MUUTETTUPVM from TUOTE where NUMERO='A1'"), "2024-09-01");
    EXPECT_EQ(company.text("select MUUTETTUTIME from TUOTE where NUMERO='A1'"), "06:30:00");
    // selected by its second class alone; only that one moves
    EXPECT_EQ(company.number("select LVV*100+ALV2*10+OSTOVERO from TUOTE where NUMERO='A2'"), 262);
    EXPECT_EQ(company.number("select HINTA from TUOTE where NUMERO='A2'"), 101.11);
    const auto now = company.everything();
    EXPECT_EQ(now.at("TUOTE")[2], untouched.at("TUOTE")[2]) << "not of the class";
    EXPECT_EQ(now.at("TUOTE")[3], untouched.at("TUOTE")[3]) << "in an ignored sub-group";

    // the group range counts although the product group restriction is off
    EXPECT_EQ(now.at("TRYHMA")[0], untouched.at("TRYHMA")[0]);
    EXPECT_EQ(company.number("select VERO*100+ALV2*10+OSTOVERO from TRYHMA where Nro=11"), 666);
    EXPECT_EQ(company.number("select VERO*100+ALV2*10+OSTOVERO from TRYHMA where Nro=12"), 262);
    EXPECT_EQ(company.text("select MUUTOSKLO from TRYHMA where Nro=12"), "06:30:00");

    // A1's label row of type 1 is reset, A2 has no labels; no row was added
    EXPECT_EQ(now.at("HR").size(), 2);
    EXPECT_EQ(company.number("select Maara*100+H1*10+MaaraAleHinta from HR where Tyyppi=1"), 200);
    EXPECT_EQ(company.text("select Voimassa from HR where Tyyppi=1"), "");
    EXPECT_EQ(company.number("select Maara*10+H1 from HR where Tyyppi=2"), 97);
    EXPECT_EQ(now.at("WEBKLIITOS").size(), 2);
    EXPECT_EQ(company.text("select taulu||':'||Tyyppi from WEBKLIITOS where Tunniste='A2'"),
              "TUOTE:M");

    EXPECT_EQ(company.ports.lines,
              (QStringList{
                  "Huomaa: ulosrajattavissa ryhmissä (edtAliryhmaIgnore) on kohta, joka ei ole "
                  "ryhmän numero ja jota ei oteta huomioon: x",
                  "Aloitetaan taksavaiheet, parametrit ->",
                  "Rajaus: ( AliRyhma not in ( 5 )) AND ( lvv = 3 OR alv2 = 3 OR ostovero = 3) "
                  "Pyöristys: Normaali, 1 senttiä",
                  "Aloitetaan taksavaihe",
                  "Aloitetaan tuoteryhmien päivitys",
                  "Tryhmä alv1 3 -> 6",
                  "Tryhmä alv2 3 -> 6",
                  "Tryhmä ostoalv 3 -> 6",
                  "tarkastetaan myymalahinnat",
                  "update myymalahinnat:  hinta1alv0 = hinta1/1.255, hinta2alv0 = hinta2/1.255, "
                  "hinta3alv0 = hinta3/1.255",
                  "Aloitetaan tuotteiden päivitys",
                  "Tuote: A1 VANHAHINTA(=hinta )1=12.400, UUSIHINTA=12.550 VANHAHINTA(=hinta3 "
                  ")2=5.125, UUSIHINTA=5.125 VANHAHINTA(=hinta3 )3=5.125, UUSIHINTA=5.190 "
                  "VANHAOSTOHINTA=4.000, UUSIOSTOHINTA=5.000 VANHAVIIMOH=5.000, UUSIVIIMOH=2.500",
                  "Tuote: A2 VANHAHINTA(=hinta )1=99.900, UUSIHINTA=101.110 VANHAHINTA(=hinta3 "
                  ")2=9.990, UUSIHINTA=9.990 VANHAHINTA(=hinta3 )3=9.990, UUSIHINTA=10.110 "
                  "VANHAOSTOHINTA=8.000, UUSIOSTOHINTA=10.000 VANHAVIIMOH=6.000, UUSIVIIMOH=3.000",
                  "Tuotetiedot muutettu ( 2 kpl)",
              }));

    // a second run of the same definition finds nothing left to change
    company.setNow(QDateTime(QDate(2024, 9, 2), QTime(8, 0)));
    EXPECT_EQ(company.run(definition).products, 0);
    EXPECT_EQ(company.everything(), now);
}

TEST(ChangeRun, StorePrices) {
    RunCompany company;
    addProduct(company, "A1", "LVV, ALV2", "3, 0");
    addProduct(company, "A2", "LVV, ALV2", "2, 3");  // store prices follow the first class alone
    for (const char* row :
         {"1, 'A1', 12.4, 10, 50, 1", "2, 'A1', 9, 8.1, 25.1, 1", "1, 'A2', 12.4, 10, 50, 1"}) {
        company.exec(QStringLiteral("insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, "
                                    "Hinta1Alv0, Hinta2, Hinta2Alv0) values (%1)")
                         .arg(QLatin1String(row)));
    }
    const QByteArray other = company.everything().at("MYYMALAHINNAT")[1];
    ChangeDefinition definition = plainDefinition();
    definition.levels[0].keepVat0 = true;
    definition.levels[1] = {1.0, QStringLiteral("hinta"), false};
    EXPECT_TRUE(company.run(definition).clean());
    const auto price = [&](int store, const char* column) {
        return company.number(
            QStringLiteral("select %1 from MYYMALAHINNAT where Tuote='A1' and Myymala=%2")
                .arg(QLatin1String(column))
                .arg(store));
    };
    EXPECT_EQ(price(1, "Hinta1"), 12.55);  // 10 x 1.255
    EXPECT_EQ(price(1, "Hinta1Alv0"), 10.0);
    EXPECT_EQ(price(1, "Hinta2"), 50.0);
    EXPECT_EQ(price(1, "Hinta2Alv0"), 50.0 / 1.255);  // unrounded
    EXPECT_EQ(price(2, "Hinta1"), 10.17);             // 8.1 x 1.255 = 10.1655
    EXPECT_EQ(price(2, "Hinta2Alv0"), 25.1 / 1.255);
    EXPECT_EQ(company.text("select Muutettu from MYYMALAHINNAT where Tuote='A1' and Myymala=2"),
              "2024-09-01 06:30:00");
    EXPECT_TRUE(company.everything().at("MYYMALAHINNAT").contains(other));

    // always up to five cents is a valid expression
    company.exec("update TUOTE set LVV=3 where NUMERO='A1'");
    definition.roundingStep = vatchange::RoundingStep::Five;
    definition.roundingRule = vatchange::RoundingRule::Up;
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_EQ(price(2, "Hinta1"), 10.2);  // 10.1655 x 20 = 203.31, + 0.9999 -> 204 / 20
}

TEST(ChangeRun, StorePricesThatTheDatabaseRefuses) {
    RunCompany company;
    addProduct(company, "A1", "LVV, HINTA", "3, 12.4");
    ChangeDefinition definition = plainDefinition();
    definition.levels[0].keepVat0 = true;
    definition.roundingStep = vatchange::RoundingStep::Five;
    EXPECT_TRUE(company.run(definition).clean()) << "no store row: the statement is never run";
    company.exec("update TUOTE set LVV=3");
    company.exec("insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'A1', 12.4)");
    company.exec("insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (2, 'A1', 12.4)");
    const auto before = company.everything();
    const RunResult result = company.run(definition);
    EXPECT_EQ(result.failedSteps, 1);
    EXPECT_EQ(result.products, 1) << "the run goes on";
    EXPECT_EQ(company.ports.linesWith("Virhe alvien muutoksessa ->"), 1);
    EXPECT_EQ(company.everything().at("MYYMALAHINNAT"), before.at("MYYMALAHINNAT"));
}

TEST(ChangeRun, DependentTables) {
    RunCompany company;
    addProduct(company, "A1", "LVV, maaraAle", "3, 1");
    addProduct(company, "A2", "LVV, maaraAle", "2, 2");
    // AsiakasNumero, Tuote, Hinta, HintaAlv0, OstoHinta, AsikasTyyppi, Tyyppi, Prosentteina, OhLaht
    for (const char* row : {"1, 'A1', 12.4, 10, 0.1, 0, 1, 0, 0", "2, 'A1', 50, 40, 2, 0, 1, 0, 0",
                            "7, 'A1', 99.9, 80, 2, 1, 1, 0, 0", "7, 'A1', 12.4, 10, 2, 2, 1, 0, 0",
                            "8, 'A1', 12.4, 10, 2, 1, 1, 0, 0", "1, 'A1', 12.4, 10, 2, 0, 2, 0, 0",
                            "1, 'A1', 20, 10, 2, 1, 1, 1, 0", "1, 'A1', 20, 10, 2, 2, 1, 0, 1",
                            "3, 'A1', 0, 10, 2, 0, 1, 0, 0", "1, 'A2', 12.4, 10, 2, 0, 1, 0, 0"}) {
        company.exec(QStringLiteral("insert into ASALE (AsiakasNumero, Tuote, Hinta, HintaAlv0, "
                                    "OstoHinta, AsikasTyyppi, Tyyppi, Prosentteina, "
                                    "OstohintaLahtoinen, Maara) values (%1, 1.5)")
                         .arg(QLatin1String(row)));
    }
    company.exec("insert into ASRYHMA (NRO) values (7)");
    company.exec("insert into ASIAKAS (ASIAKAS, RYHMA) values (1, 7)");
    company.exec("insert into ASIAKAS (ASIAKAS, RYHMA) values (2, 8)");
    for (const char* row : {"'A1', 1, 9.9, 2, ''", "'A1', 2, 9.9, 2, '2024-08-31'",
                            "'A1', 3, 9.9, 2, '2024-09-01'", "'A2', 1, 9.9, 2, ''"}) {
        company.exec(QStringLiteral("insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta, "
                                    "Ostohinta, Loppu) values (%1)")
                         .arg(QLatin1String(row)));
    }
    company.exec(
        "insert into VAKIOLASKUTUS (Asiakas, Tuote, ahinta, Yhteensa, ostohinta, "
        "ahintaalv0) values (5, 'A1', 12.4, 99.9, 2, 10)");
    company.exec(
        "insert into MAARAALE (Numero, Nimi, Arvo, Ostohinta, Loppu) values (1, 'Kimppa', "
        "9.5, 2, '2024-07-01')");
    company.exec("insert into MAARAALE (Numero, Nimi, Arvo, Ostohinta) values (2, 'Muu', 9.5, 2)");

    ChangeDefinition definition = plainDefinition();
    definition.products = false;
    definition.customerPriceLists = definition.campaigns = true;
    definition.recurringInvoicing = definition.quantityDiscounts = true;
    definition.customerGroups = {7};
    definition.purchaseCoefficient = 1.1;
    definition.productLog = true;
    const auto before = company.everything();
    EXPECT_TRUE(company.run(definition).clean());

    const auto asale = [&](const char* column, const char* key) {
        return company.number(QStringLiteral("select %1 from ASALE where %2")
                                  .arg(QLatin1String(column), QLatin1String(key)));
    };
    const char* const ownRow = "AsiakasNumero=1 and Tuote='A1' and AsikasTyyppi=0 and Tyyppi=1";
    EXPECT_EQ(asale("Hinta", ownRow), 12.55);
    EXPECT_EQ(asale("HintaAlv0", ownRow), 12.55 / 1.255);
    // single precision: 1.1 x the single next to 0.1, stored as a single again
    EXPECT_EQ(asale("OstoHinta", ownRow),
              static_cast<double>(static_cast<float>(1.1 * static_cast<double>(0.1F))));
    EXPECT_EQ(asale("Hinta", "AsiakasNumero=7 and AsikasTyyppi=1"), 101.11);
    EXPECT_EQ(asale("Hinta", "AsiakasNumero=1 and Tuote='A1' and Tyyppi=2"), 12.4);
    for (const char* kept :
         {"AsiakasNumero=2", "AsiakasNumero=8", "AsiakasNumero=7 and AsikasTyyppi=2",
          "AsiakasNumero=1 and AsikasTyyppi=1", "AsiakasNumero=1 and AsikasTyyppi=2",
          "AsiakasNumero=3", "Tuote='A2'"})
        EXPECT_NE(asale("HintaAlv0", kept), 12.55 / 1.255) << kept;
    EXPECT_EQ(company.number("select count(*) from ASALE where HintaAlv0 = 10 or HintaAlv0 = 40"),
              8);

    // 9.9 as a single is 9.8999996185; x k = 10.01975... -> 10.02, stored as a single
    EXPECT_EQ(company.number("select Myyntihinta from KAMPPANJA where Tuote='A1' and RiviNro=1"),
              static_cast<double>(10.02F));
    EXPECT_EQ(company.number("select Ostohinta from KAMPPANJA where Tuote='A1' and RiviNro=3"),
              1.1 * 2);
    EXPECT_EQ(company.number("select count(*) from KAMPPANJA where Ostohinta = 2"), 2);
    EXPECT_EQ(company.number("select ahinta from VAKIOLASKUTUS"), 12.55);
    EXPECT_EQ(company.number("select Yhteensa from VAKIOLASKUTUS"), 101.11);
    EXPECT_EQ(company.number("select ahintaalv0 from VAKIOLASKUTUS"), 10.0);
    EXPECT_EQ(company.text("select MuutosAika from VAKIOLASKUTUS"), "06:30:00");
    // 9.5 x k = 9.61491... -> 9.61
    EXPECT_EQ(company.number("select Arvo from MAARAALE where Numero=1"),
              static_cast<double>(9.61F));
    EXPECT_EQ(company.everything().at("MAARAALE")[1], before.at("MAARAALE")[1]);
    EXPECT_EQ(company.everything().at("TUOTE"), before.at("TUOTE"));

    EXPECT_EQ(company.ports.lines.mid(3),
              (QStringList{
                  "Aloitetaan asiakashinnastojen päivitys",
                  "Asiakas 1 tuote: A1 määrä: 1.5  hinta: 12.4000€  -> 12.5500€   hintaalv0: "
                  "10.0000€  -> 10.0000€  ostohinta: 0.1000€  -> 0.1100€ ",
                  "As.ryhmä 7 tuote: A1 määrä: 1.5  hinta: 99.9000€  -> 101.1100€   hintaalv0: "
                  "80.0000€  -> 80.5657€  ostohinta: 2.0000€  -> 2.2000€ ",
                  " ( 2 rivi)",
                  "Aloitetaan kampanjoiden päivitys",
                  "Tehdään kampanjat (tuote,rivinro; vanha myynti; uusi myynti; vanha osto; uusi "
                  "osto)",
                  "Kampanja: A1 1;  9.90;10.02; 2.00; 2.20",
                  "Kampanja: A1 3;  9.90;10.02; 2.00; 2.20",
                  "Aloitetaan vakiolaskutusten päivitys",
                  "Vakiolaskutus (Asiakas, tuote: vanhahinta;uusihinta;vanha "
                  "yht;uusiyht;vanhaosto;uusiosto)",
                  "Asiakas 5, tuote A112.40; 12.55; 99.90; 101.11;  2.00; 2.20",
                  "Aloitetaan määräalejen päivitys",
                  "Määräale Kimppa ( 1 ) arvo: 9.5000 -> 9.6100 ostohinta: 2.0000 -> 2.2000",
              }));
}

TEST(ChangeRun, RowsThatShareTheirKeyKeepToThemselves) {
    RunCompany company;
    const ChangeDefinition definition = test::addSharedKeys(company);
    const auto before = company.everything();
    const RunResult result = company.run(definition);
    EXPECT_TRUE(result.clean());
    test::expectSharedKeysChanged(company, before);
    ASSERT_EQ(result.changed.size(), 2);
    EXPECT_EQ(result.changed[0].rows, 8);
    EXPECT_EQ(result.changed[1].rows, 4);
    EXPECT_EQ(company.ports.linesWith("Kampanja: A1 1;"), 4);
}

TEST(ChangeRun, CustomerPricesWithoutGroupsAndWithTheOldVatFreePrice) {
    RunCompany company;
    addProduct(company, "A1", "LVV", "3");
    for (int type = 0; type <= 2; ++type)
        company.exec(QStringLiteral("insert into ASALE (AsiakasNumero, Tuote, Hinta, HintaAlv0, "
                                    "AsikasTyyppi, Tyyppi) values (9, 'A1', 1.2345, 0.5, %1, 1)")
                         .arg(type));
    ChangeDefinition definition = plainDefinition();
    definition.products = false;
    definition.customerPriceLists = true;
    definition.levels[0].coefficient = 1.0;
    EXPECT_TRUE(company.run(definition).clean());
    // coefficient 1: unrounded, the VAT-free price from the new rate all the same; every type
    EXPECT_EQ(company.number("select count(*) from ASALE where Hinta = 1.2345"), 3);
    EXPECT_EQ(company.number("select min(HintaAlv0) from ASALE"), 1.2345 / 1.255);
    EXPECT_EQ(company.number("select max(HintaAlv0) from ASALE"), 1.2345 / 1.255);

    // the rate is stored in single precision, and it is that single which counts
    definition.targetClass = 8;
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_EQ(company.number("select max(HintaAlv0) from ASALE"),
              1.2345 / (1.0 + static_cast<double>(13.7F) / 100.0));
    definition.targetClass = 6;

    company.exec("update ASALE set HintaAlv0 = 0.5");
    definition.levels[0].coefficient = k24To25_5;
    definition.keepCustomerPricelistVat0 = true;
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_EQ(company.number("select count(*) from ASALE where Hinta = 1.25 and HintaAlv0 = 0.5"),
              3);
}

TEST(ChangeRun, ProductCodesOfTheWebShop) {
    RunCompany company;
    addProduct(company, "OK-1", "Verkkokauppa, RiippuSale", "1, 1");
    addProduct(company, "A 1", "Verkkokauppa, RiippuSale, Ostokampanjassa", "1, 1, 1");
    addProduct(company, "B/2", "Verkkokauppa", "1");
    addProduct(company, "C/3", "Verkkokauppa", "0");
    ChangeDefinition definition = plainDefinition();
    definition.products = false;
    definition.checkProductCodes = true;
    definition.productLog = true;
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_EQ(company.ports.lines.mid(3),
              (QStringList{"Aloitetaan Verkkokauppa -valinnan poisto verkkokauppatuotteilta, "
                           "joiden tuotekoodit sisältävät kiellettyjä merkkejä",
                           "A 1;Nimi A 1", "B/2;Nimi B/2",
                           "Verkkokauppa -valinta poistettiin 2 tuotteelta"}));
    EXPECT_EQ(company.text("select NUMERO from TUOTE where Verkkokauppa=1"), "OK-1");
    EXPECT_EQ(company.number("select Ostokampanjassa from TUOTE where NUMERO='A 1'"), 1);
    EXPECT_EQ(company.text("select MUUTETTUPVM from TUOTE where NUMERO='B/2'"), "2024-09-01");
    EXPECT_EQ(company.number("select count(*) from WEBKLIITOS where Tyyppi='P'"), 2);
}

TEST(ChangeRun, OrdersGetTheDefinitionsArguments) {
    RunCompany company;
    company.exec(
        "insert into MT (Numero, Toimitustila, Toimituspaiva) values (1, 0, '2024-09-01')");
    company.exec(
        "insert into MT (Numero, Toimitustila, Toimituspaiva) values (2, 0, '2024-08-31')");
    for (int order = 1; order <= 2; ++order)
        company.exec(QStringLiteral("insert into MTRIVI (TilausNro, RiviNro, Verokanta, OstoVero, "
                                    "Toimitettava, Maara, Ahinta, Ostohinta) values (%1, 1, 3, 3, "
                                    "1, 1, 10, 4)")
                         .arg(order));
    company.exec("insert into WINOT (TilausNro, Tila) values (1, 4)");
    company.exec(
        "insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta, Maara, OstoHinta) "
        "values (1, 1, 3, 1, 2, 10)");
    ChangeDefinition definition = plainDefinition();
    definition.products = false;
    definition.salesOrders = definition.purchaseOrders = true;
    definition.roundingStep = vatchange::RoundingStep::Ten;  // one decimal
    definition.salesOrderCoefficient = 1.234;
    definition.purchaseCoefficient = 1.5;
    definition.purchaseOrderCoefficient = 1.25;
    definition.salesOrderDeliveryLimit = QDate(2024, 9, 1);
    EXPECT_TRUE(company.run(definition).clean());
    // 12.34 / 0.1 = 123.4 -> 123 x 0.1
    EXPECT_EQ(company.number("select Ahinta from MTRIVI where TilausNro=1"), 123 * 0.1);
    EXPECT_EQ(company.number("select Ostohinta from MTRIVI where TilausNro=1"), 6.0);
    EXPECT_EQ(company.number("select Verokanta from MTRIVI where TilausNro=2"), 3);
    EXPECT_EQ(company.number("select Summa from WINOTRI"), 25.0);
    EXPECT_EQ(company.number("select OstoHintaAlv0 from WINOTRI"), 12.5 / 1.255);
    EXPECT_EQ(company.ports.lines.mid(3),
              (QStringList{"Aloitetaan myyntitilausten päivitys", "Myyntitilaukset konvertoitu.",
                           "Aloitetaan ostotilausten päivitys", "Ostotilaukset konvertoitu."}));
}

}  // namespace
