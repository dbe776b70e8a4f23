#include "vatchange/rules/statements.h"

#include <gtest/gtest.h>

#include "vatchange/rules/dependent_statements.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/rules/price_rules.h"

namespace {

using vatchange::ChangeDefinition;
using vatchange::RoundingRule;
using vatchange::RoundingStep;

const QDate kDay(2024, 9, 1);

TEST(Statements, FactorReadsBackAndHasAPoint) {
    using vatchange::factorText;
    using vatchange::vatFactor;
    EXPECT_EQ(factorText(vatFactor(25.5)).toStdString(), "1.255");
    EXPECT_EQ(factorText(vatFactor(24.0)).toStdString(), "1.24");
    EXPECT_EQ(factorText(vatFactor(14.0)).toStdString(), "1.1400000000000001");
    EXPECT_EQ(factorText(vatFactor(0.0)).toStdString(), "1.0");
    EXPECT_EQ(factorText(vatFactor(-100.0)).toStdString(), "0.0");
    const double single = vatFactor(static_cast<double>(13.7F));
    EXPECT_EQ(factorText(single).toDouble(), single);
    EXPECT_EQ(factorText(1e22).toStdString(), "10000000000000000000000.0");  // no exponent
}

TEST(Statements, ProductUpdateNamesOnlyWhatChanges) {
    ChangeDefinition definition;
    definition.targetClass = 6;
    EXPECT_EQ(vatchange::productUpdate(definition, {true, false, true}, kDay).toStdString(),
              "UPDATE TUOTE SET LVV=6, OSTOVERO=6, MUUTETTUPVM = '2024-09-01', MUUTETTUTIME = "
              "CURTIME() WHERE NUMERO = :TUOTENRO");
    definition.levels[0].source = QStringLiteral("hinta");
    definition.levels[1].source = QStringLiteral("hinta9");
    definition.levels[8].source = QStringLiteral("hinta");
    definition.purchaseCoefficient = 1.01;
    definition.lastPurchaseCoefficient = 0.99;
    EXPECT_EQ(vatchange::productUpdate(definition, {true, true, true}, kDay).toStdString(),
              "UPDATE TUOTE SET hinta = :HINTA1, kaksoishinta = :HINTA2, hinta9 = :HINTA9, "
              "keskihinta =:OSTOHINTA,ANNOSHINTA = :ANNOSHINTA, viimostohinta =:VIIMOSTOHINTA, "
              "LVV=6, ALV2=6, OSTOVERO=6, MUUTETTUPVM = '2024-09-01', MUUTETTUTIME = CURTIME() "
              "WHERE NUMERO = :TUOTENRO");
}

TEST(Statements, GroupUpdates) {
    ChangeDefinition definition;
    definition.sourceClass = 2;
    definition.targetClass = 6;
    definition.productGroup.first = 10;
    const auto updates = vatchange::groupUpdates(definition);
    EXPECT_EQ(updates[0].statement.toStdString(),
              "UPDATE TRYHMA SET VERO = :UUSIVERO, MUUTOSPVM = CURDATE(), MUUTOSKLO = CURTIME() "
              "WHERE VERO = :VANHAVERO and nro >= 10");
    EXPECT_EQ(updates[1].log.toStdString(), "Tryhmä alv2 2 -> 6");
    EXPECT_EQ(updates[1].status.toStdString(), "TRyhmä alv2");
    EXPECT_EQ(updates[2].statement.toStdString(),
              "UPDATE TRYHMA SET OSTOVERO = :UUSIVERO, MUUTOSPVM = CURDATE(), MUUTOSKLO = "
              "CURTIME() WHERE OSTOVERO = :VANHAVERO and nro >= 10");
    EXPECT_EQ(updates[2].log.toStdString(), "Tryhmä ostoalv 2 -> 6");
    EXPECT_TRUE(updates[2].status.isEmpty());
}

TEST(Statements, StorePriceAssignmentsByStepAndRule) {
    struct Case {
        RoundingStep step;
        RoundingRule rule;
        const char* rounded;
    };
    const std::vector<Case> cases = {
        {RoundingStep::Tenth, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255),3)"},
        {RoundingStep::Tenth, RoundingRule::Up, "round( ( hinta2alv0 * 1.255),3)"},
        {RoundingStep::One, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255),2)"},
        {RoundingStep::One, RoundingRule::Down, "round( ( hinta2alv0 * 1.255),2)"},
        {RoundingStep::Five, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255)*20)/20)"},
        {RoundingStep::Five, RoundingRule::Up, "FLOOR((( hinta2alv0 * 1.255)* 20) + 0.9999) / 20"},
        {RoundingStep::Five, RoundingRule::Down, "FLOOR((( hinta2alv0 * 1.255)* 20) ) / 20"},
        {RoundingStep::Ten, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255)*10)/10)"},
        {RoundingStep::Ten, RoundingRule::Up, "FLOOR((( hinta2alv0 * 1.255)* 10) + 0.9999) / 10"},
        {RoundingStep::Ten, RoundingRule::Down, "FLOOR((( hinta2alv0 * 1.255)* 10) ) / 10"},
        {RoundingStep::Hundredth, RoundingRule::Up, "round( ( hinta2alv0 * 1.255),4)"},
    };
    for (const Case& c : cases) {
        ChangeDefinition definition;
        definition.levels[0] = {1.0, QStringLiteral("hinta"), false};
        definition.levels[1] = {1.0, QStringLiteral("hinta"), true};
        definition.levels[2] = {1.0, QStringLiteral("0"), true};
        definition.roundingStep = c.step;
        definition.roundingRule = c.rule;
        const QString assignments =
            vatchange::storePriceAssignments(definition, vatchange::vatFactor(25.5));
        EXPECT_EQ(assignments.toStdString(),
                  std::string(" hinta1alv0 = hinta1/1.255, hinta2 = ") + c.rounded);
    }
    EXPECT_TRUE(vatchange::storePriceAssignments(ChangeDefinition(), 1.255).isEmpty());
    EXPECT_EQ(vatchange::storePriceUpdate(QStringLiteral(" hinta1alv0 = hinta1/1.0")).toStdString(),
              "update myymalahinnat set  hinta1alv0 = hinta1/1.0, muutettu =now() where tuote=:t");
}

TEST(Statements, ShelfLabelUpdate) {
    const std::string reset =
        "update hr set maara = :maara, tulpvm=null, tulaika=0,h1=0,h2=0, h3=0, h4=0, h5=0, h6=0, "
        "h7=0, h8=0, h9=0, voimassa=null, pantti=0, maaraale=''";
    EXPECT_EQ(vatchange::labelUpdate(true).toStdString(),
              reset +
                  ", maaraalehinta=0,maaraalekpl=0,MaaraAleHinPanttilla=0  where tuote = :tuote "
                  "and tyyppi=1");
    EXPECT_EQ(vatchange::labelUpdate(false).toStdString(),
              reset + " where tuote = :tuote and tyyppi=1");
}

TEST(Statements, CustomerPriceConditionByGroups) {
    const auto tail = [](const ChangeDefinition& definition) {
        const QString text = vatchange::customerPriceQuery(QStringLiteral("(C)"), definition);
        EXPECT_TRUE(text.startsWith(QStringLiteral("SELECT AsiakasNumero, tuote, asale.hinta, ")));
        return text.mid(text.indexOf(QStringLiteral(" and (C)"))).simplified().toStdString();
    };
    ChangeDefinition definition;
    definition.webShopCustomerPriceLists = true;
    EXPECT_EQ(tail(definition), "and (C)");
    definition.customerGroups = {3, 8};
    const std::string own =
        "and (C) and (((Asikastyyppi = 0) and (AsiakasNumero IN (SELECT ASIAKAS.ASIAKAS FROM "
        "ASIAKAS, ASRYHMA WHERE (ASIAKAS.RYHMA = ASRYHMA.NRO) AND (ASRYHMA.NRO IN ( 3,8 ))))) ";
    EXPECT_EQ(tail(definition), own +
                                    "or ( ( (Asikastyyppi = 1) or (Asikastyyppi = 2) ) and "
                                    "(Asiakasnumero IN ( 3,8 ))))");
    definition.webShopCustomerPriceLists = false;
    EXPECT_EQ(tail(definition), own + "or ( (Asikastyyppi = 1) and (Asiakasnumero IN ( 3,8 ))))");
}

TEST(LogTexts, AmountLines) {
    EXPECT_EQ(
        vatchange::customerPriceLine(0, 17, QStringLiteral("A 1"), 2.5, {10.0, 10.12},
                                     {8.0645, 8.06374}, {1.0 / 3.0, 0.5})
            .toStdString(),
        "Asiakas 17 tuote: A 1 määrä: 2.5  hinta: 10.0000€  -> 10.1200€   hintaalv0: 8.0645€  -> "
        "8.0637€  ostohinta: 0.3333€  -> 0.5000€ ");
    EXPECT_TRUE(vatchange::customerPriceLine(1, 3, {}, 1.0, {}, {}, {})
                    .startsWith(QStringLiteral("As.ryhmä 3 tuote:  määrä: 1  hinta: 0.0000€ ")));
    EXPECT_TRUE(vatchange::customerPriceLine(2, 3, {}, 0.0, {}, {}, {})
                    .startsWith(QStringLiteral("Webas.ryhmä 3 ")));
    EXPECT_EQ(
        vatchange::campaignLine(QStringLiteral("A1"), 2, {9.9, 10.0}, {1234.5, 0.25}).toStdString(),
        "Kampanja: A1 2;  9.90;10.00;1234.50; 0.25");
    EXPECT_EQ(
        vatchange::recurringInvoiceLine(5, QStringLiteral("A1"), {1.0, 2.0}, {3.0, 4.0}, {5.0, 6.0})
            .toStdString(),
        "Asiakas 5, tuote A1 1.00;  2.00;  3.00;  4.00;  5.00; 6.00");
    EXPECT_EQ(vatchange::rowCountLine(3).toStdString(), " ( 3 rivi)");
}

TEST(LogTexts, ProductLineShowsTheSourceColumn) {
    ChangeDefinition definition;
    definition.levels[0] = {1.1, QStringLiteral("hinta"), false};
    definition.levels[2] = {1.0, QStringLiteral("kaksoishinta"), false};
    definition.lastPurchaseCoefficient = 2.0;
    vatchange::ProductPrices before;
    before.levels = {10.0, 20.0, 30.0, 0, 0, 0, 0, 0, 0};
    before.lastPurchase = 1.5;
    const vatchange::PriceRules rules(definition);
    EXPECT_EQ(vatchange::productLine(QStringLiteral("A1"), rules, before, rules.convert(before))
                  .toStdString(),
              "Tuote: A1 VANHAHINTA(=hinta )1=10.000, UUSIHINTA=11.000 VANHAHINTA(=kaksoishinta "
              ")3=20.000, UUSIHINTA=20.000 VANHAVIIMOH=1.500, UUSIVIIMOH=3.000");
}

}  // namespace
