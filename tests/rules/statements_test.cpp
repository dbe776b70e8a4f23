#include "vatchange/rules/statements.h"

#include <gtest/gtest.h>

#include "vatchange/rules/dependent_statements.h"
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

TEST(Statements, StorePriceAssignmentsByStepAndRule) {
    struct Case {
        RoundingStep step;
        RoundingRule rule;
        const char* rounded;
    };
    const std::vector<Case> cases = {
        {RoundingStep::Tenth, RoundingRule::Up, "round( ( hinta2alv0 * 1.255),3)"},
        {RoundingStep::One, RoundingRule::Normal, "round( ( hinta2alv0 * 1.255),2)"},
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

}  // namespace
