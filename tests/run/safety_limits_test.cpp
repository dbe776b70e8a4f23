// Limits of a definition on what a run may change, and what it says about the company beforehand.
#include <gtest/gtest.h>

#include "data/engine/run_journal.h"
#include "tests/run/run_company.h"
#include "vatchange/journal/limited_products.h"
#include "vatchange/rules/price_limit.h"
#include "vatchange/run/company_findings.h"

namespace {

using data::RunState;
using test::RunCompany;
using vatchange::ChangeDefinition;
using vatchange::RunResult;

TEST(PercentLimit, JudgesFromTheOldPrice) {
    const struct {
        double before;
        double after;
        double most;
        bool tooMuch;
    } cases[] = {{1.0, 1.1, 10, false},    {1.0, 1.11, 10, true}, {10, 9, 10, false},
                 {10, 8.99, 10, true},     {0, 50, 0, false},     {10, 0, 1000, true},
                 {10, -0.01, 1000, true},  {-10, -9, 10, false},  {-10, 5, 100, true},
                 {12.4, 12.55, 1.2, true}, {12.4, 12.4, 0, false}};
    for (const auto& c : cases)
        EXPECT_EQ(vatchange::changesTooMuch(c.before, c.after, c.most), c.tooMuch)
            << c.before << " -> " << c.after << ", " << c.most << " %";
}

class SafetyLimits : public testing::Test {
  protected:
    // Level 2 gets the price of level 1: of OVER it would double. The two share a quantity
    // discount.
    SafetyLimits() {
        m_definition = test::plainDefinition();
        m_definition.levels[1] = {1.0, QStringLiteral("hinta"), false};
        m_definition.mostPercent = 5;
        m_definition.campaigns = m_definition.quantityDiscounts = true;
        for (const char* product : {"'OK', 3, 10, 10, 1", "'OVER', 3, 10, 5, 1"})
            m_company.exec(QStringLiteral("insert into TUOTE (NUMERO, LVV, HINTA, KAKSOISHINTA, "
                                          "HRKPL, maaraale) values (%1, 1)")
                               .arg(QLatin1String(product)));
        m_company.execAll(
            {"insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta) values ('OK', 1, 8), "
             "('OVER', 1, 8)",
             "insert into MAARAALE (Numero, Arvo) values (1, 20)"});
    }

    double campaign(const char* product) {
        return m_company.number(
            QStringLiteral("select Myyntihinta from KAMPPANJA where Tuote = '%1'")
                .arg(QLatin1String(product)));
    }
    qsizetype told(const char* begin) {
        return m_company.ports.linesWith(QString::fromUtf8(begin));
    }

    RunCompany m_company;
    ChangeDefinition m_definition;
};

TEST_F(SafetyLimits, TooManyProductsRefuseTheDefinition) {
    const auto before = m_company.everything();
    m_definition.mostProducts = 1;
    for (const bool unattended : {true, false}) {  // nobody is asked
        m_company.ports.isUnattended = unattended;
        const RunResult result = m_company.run(m_definition);
        EXPECT_TRUE(result.refused);
        EXPECT_EQ(result.refusal, QString("Määrittelyä ei ajeta: TurvarajaTuotteet=1 (Turvaraja, "
                                          "tuotteita enintään): rajaukset valitsevat 2 tuotetta"));
    }
    EXPECT_EQ(m_company.everything(), before);
    EXPECT_TRUE(m_company.database().journal()->runs().empty());
    m_definition.mostProducts = 2;
    EXPECT_EQ(m_company.run(m_definition).products, 1);
}

TEST_F(SafetyLimits, AProductOverThePercentsIsPassedOverWithItsRows) {
    const RunResult result = m_company.run(m_definition);
    EXPECT_EQ(result.products, 1);
    EXPECT_EQ(result.limitedNumbers, QStringList("OVER"));
    EXPECT_FALSE(result.clean());
    EXPECT_EQ(result.state, RunState::Done);
    EXPECT_TRUE(m_company.ports.hasLine(
        "Huomaa: tuotetta OVER ei muuteta, turvaraja 5 % ylittyy: hinta 10.000 -> 10.120 (+1.20 "
        "%), kaksoishinta 5.000 -> 10.000 (+100.00 %)"));
    EXPECT_EQ(told("Huomaa: määräalennus 1 muutettiin, vaikka turvaraja"), 1);
    EXPECT_FLOAT_EQ(campaign("OK"), 8.10);
    EXPECT_FLOAT_EQ(campaign("OVER"), 8);
    EXPECT_FLOAT_EQ(m_company.number("select Arvo from MAARAALE"), 20.24);
    EXPECT_EQ(m_company.text("select count(*) from HR"), QString("1"));
    EXPECT_EQ(m_company.text("select LVV from TUOTE where NUMERO = 'OVER'"), QString("3"));
    ASSERT_TRUE(result.verification);
    EXPECT_EQ(result.verification->left("TUOTE", vatchange::LeftReason::OverLimit), 1);
    EXPECT_FALSE(result.verification->unexplained());

    // a run without the limit would multiply the discount again, and nothing else
    m_definition.mostPercent.reset();
    m_company.run(m_definition);
    EXPECT_TRUE(m_company.ports.hasLine(
        "Huomaa: ajo 1 on jo muuttanut samoilla alv-luokilla: määräalennukset. Tämä ajo muuttaa "
        "uudestaan ne rivit, joiden tuotteella on vielä vanha alv-luokka."));
    EXPECT_FLOAT_EQ(campaign("OVER"), 8.10);
}

TEST_F(SafetyLimits, AResumedRunPassesOverTheSameProducts) {
    m_company.ports.stop = [this] { return told("Huomaa: tuotetta OVER") > 0; };
    const qint64 run = m_company.run(m_definition).run;
    m_company.ports.stop = {};
    m_company.exec("update TUOTE set KAKSOISHINTA = 10 where NUMERO = 'OVER'");
    const RunResult result =
        vatchange::runChange(m_company.database(), m_definition, m_company.ports, {run, 0});
    EXPECT_EQ(result.limitedNumbers, QStringList("OVER"));
    EXPECT_EQ(result.state, RunState::Done);
    EXPECT_FLOAT_EQ(campaign("OVER"), 8);
    EXPECT_EQ(told("Huomaa: tuotetta OVER"), 1);
    std::vector<vatchange::LimitedProduct> kept;
    vatchange::visitLimitedProducts(*m_company.database().journal(), run,
                                    [&kept](const auto& product) { kept.push_back(product); });
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].quantityDiscount, 1);
    EXPECT_EQ(kept[0].prices.at(1).before, 5);
    EXPECT_EQ(kept[0].prices.at(1).after, 10);
}

TEST_F(SafetyLimits, ThePriceUnderTheLockCounts) {
    const auto other = m_company.otherProgram();
    m_company.ports.onStatus = [&other](const QString& text) {
        if (text == QStringLiteral("Päivitetään tuotteet"))
            test::exec(*other, "update TUOTE set KAKSOISHINTA = 1 where NUMERO = 'OK'");
    };
    const RunResult result = m_company.run(m_definition);
    EXPECT_EQ(result.limitedNumbers, (QStringList{"OVER", "OK"}));
    EXPECT_EQ(result.state, RunState::Done);
    EXPECT_FLOAT_EQ(campaign("OK"), 8.10);
    EXPECT_EQ(result.verification->left("TUOTE", vatchange::LeftReason::OverLimit), 2);
    // the campaign would be multiplied again
    m_company.ports.onStatus = {};
    m_company.run(m_definition);
    EXPECT_EQ(told("Huomaa: ajo 1 on jo muuttanut samoilla alv-luokilla: kampanjat, määräal"), 1);
}

TEST_F(SafetyLimits, TheDayOfChangeTakesThePlaceOfTheUsualDates) {
    m_company.execAll({"update KAMPPANJA set Loppu = '2024-10-31' where Tuote = 'OK'",
                       "update KAMPPANJA set Loppu = '2024-11-01' where Tuote = 'OVER'",
                       "insert into MAARAALE (Numero, Arvo, Loppu) values (2, 20, '2024-10-31')",
                       "insert into TUOTE (NUMERO, LVV, maaraale) values ('X', 3, 2)"});
    m_definition.mostPercent.reset();
    m_definition.changeDay = QDate(2024, 11, 1);
    m_company.setNow(QDateTime(QDate(2024, 10, 31), QTime(14, 59)));
    EXPECT_TRUE(m_company.run(m_definition).refused);
    m_company.setNow(QDateTime(QDate(2024, 10, 31), QTime(15, 0)));
    EXPECT_TRUE(m_company.run(m_definition).clean());
    EXPECT_FLOAT_EQ(campaign("OK"), 8);
    EXPECT_FLOAT_EQ(campaign("OVER"), 8.10);
    EXPECT_FLOAT_EQ(m_company.number("select Arvo from MAARAALE where Numero = 2"), 20);
}

TEST_F(SafetyLimits, FindingsAboutTheCompany) {
    m_definition.levels[0].keepVat0 = true;
    m_definition.salesOrders = m_definition.salesOrderFromVat0 = true;
    m_definition.purchaseOrders = m_definition.purchaseOrderFromVat0 = true;
    m_company.execAll(
        {"insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta1Alv0) values (1, 'OK', 5, 0), "
         "(2, 'OK', 5, 4), (3, 'OK', 0, 0)",
         "insert into MT (Numero, Toimitustila, Veloitustapa) values (1, 3, 0), (2, 4, 0), "
         "(3, 0, 14)",
         "insert into MTRIVI (TilausNro, RiviNro, Verokanta, Toimitettava, Ahinta) values "
         "(1, 1, 3, 1, 5), (1, 2, 2, 1, 5), (1, 3, 3, 0, 5), (2, 1, 3, 1, 5), (3, 1, 3, 1, 5)",
         "insert into WINOT (TilausNro, Tila) values (1, 4)",
         "insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta, OstoHinta) values "
         "(1, 1, 3, 1, 5), (1, 2, 3, 1, 0)"});
    const auto found = [this](const vatchange::CompanyFindingOptions& options) {
        QStringList texts;
        for (const auto& finding :
             vatchange::companyFindings(m_company.database(), m_definition, options))
            texts += finding.text;
        return texts;
    };
    const QString emptied = " on vailla alv0-hintaa: hinta, joka lasketaan siitä, tulee nollaksi";
    EXPECT_EQ(found({}),
              (QStringList{"1 myymälähintaa" + emptied, "1 myyntitilauksen riviä" + emptied,
                           "1 ostotilauksen riviä" + emptied}));
    m_definition.levels[0].keepVat0 = m_definition.salesOrders = false;
    m_definition.purchaseOrders = false;
    vatchange::CompanyFindingOptions little;
    little.freeBytes = 1 << 20;
    // 32 Mt at least, 2 products, 2 campaigns, 1 discount and 3 store prices
    EXPECT_EQ(found(little), QStringList("levyllä on tilaa 1 Mt, ajopäiväkirja ja loki voivat "
                                         "tarvita 33 Mt"));
    m_definition.mainGroup = {true, 7, 0, {}};
    EXPECT_EQ(found({}), QStringList("rajaukset eivät valitse yhtään tuotetta, jolla on luokka 3"));
}

}  // namespace
