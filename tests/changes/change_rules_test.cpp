// The rules behind overview and findings, by hand-derived cases.
#include <gtest/gtest.h>

#include "vatchange/changes/changed_fields.h"
#include "vatchange/changes/expected_change.h"
#include "vatchange/changes/level_order.h"
#include "vatchange/changes/order_risk.h"
#include "vatchange/changes/price_endings.h"
#include "vatchange/changes/price_spread.h"

using namespace vatchange;

TEST(ChangeRules, EndingsOfPrices) {
    EndingCounts counts;
    for (const double price :
         {1.90, 10.0, double(9.9F), 0.95, 3.05, 2.99, 3.09, 1.234, 1.01, 0.005, -5.0, 0.1 + 0.2})
        counts.add(price);
    // x,x0: 1.90 10 9.9 -5 0.30; x,x5: 0.95 3.05; x,x9: 2.99 3.09; others: 1.234 1.01 0.005
    EXPECT_EQ(counts.digits, (std::array<qint64, 4>{5, 2, 2, 3}));
    EXPECT_EQ(counts.cents, (std::array<qint64, 3>{2, 1, 1}));
}

TEST(ChangeRules, SpreadOfChanges) {
    // 0.3 in at most 30 bins: 0.02 wide, from 1.00 to 1.32
    PriceSpread spread = spreadOf({1.0, 1.3, 1.2, 1.1, 1.2}, {1.21, 1.21});
    EXPECT_DOUBLE_EQ(spread.width, 0.02);
    EXPECT_DOUBLE_EQ(spread.from, 1.0);
    ASSERT_EQ(spread.bins.size(), 16U);
    EXPECT_EQ(spread.bins[0], 1);
    EXPECT_EQ(spread.bins[5], 1);
    EXPECT_EQ(spread.bins[10], 2);
    EXPECT_EQ(spread.bins[15], 1);
    EXPECT_EQ(spread.expected, std::vector<double>{1.21});
    EXPECT_NEAR(spread.mean, 1.16, 1e-12);
    EXPECT_DOUBLE_EQ(spread.median, 1.2);

    // all the same but for one on each side in 202: a range of 0.1 around them
    std::vector<double> percents(200, 1.2);
    percents.insert(percents.end(), {50.0, -30.0});
    spread = spreadOf(percents, {});
    EXPECT_DOUBLE_EQ(spread.width, 0.005);
    EXPECT_NEAR(spread.from, 1.15, 1e-9);
    ASSERT_EQ(spread.bins.size(), 21U);
    EXPECT_EQ(spread.bins[10], 200);
    EXPECT_EQ(spread.below, 1);
    EXPECT_EQ(spread.above, 1);

    // an expected change is in the range, however far the prices are from it
    spread = spreadOf({0.0, 0.0}, {10.0});
    EXPECT_DOUBLE_EQ(spread.width, 0.5);
    ASSERT_EQ(spread.bins.size(), 21U);
    EXPECT_EQ(spread.bins.front(), 2);
    EXPECT_EQ(spreadOf({}, {1.0}).count, 0);
}

TEST(ChangeRules, OrderOfPriceLevels) {
    struct Case {
        std::vector<double> before;
        std::vector<double> after;
        double costBefore;
        double costAfter;
        const char* reasons;
    };
    for (const Case& c :
         std::vector<Case>{{{10, 9}, {10.12, 10.2}, 0, 0, "taso 2 kalliimpi kuin taso 1"},
                           {{10, 10}, {10, 10.1}, 0, 0, "taso 2 kalliimpi kuin taso 1"},
                           {{10, 10}, {10.1, 10}, 0, 0, ""},
                           {{10, 12}, {13, 12}, 0, 0, "taso 2 halvempi kuin taso 1"},
                           {{10, 12}, {12, 12}, 0, 0, ""},
                           {{10, 8, 8}, {10, 8, 8.1}, 0, 0, ""},
                           {{10, 8, 7}, {10, 7, 8}, 0, 0, "taso 3 kalliimpi kuin taso 2"},
                           {{10, 0}, {10, 11}, 0, 0, ""},
                           {{10}, {9.99}, 10, 10, "taso 1 alle ostohinnan"},
                           {{10}, {10}, 10, 10.01, "taso 1 alle ostohinnan"},
                           {{9}, {8}, 10, 10, ""},
                           {{9}, {8}, 0, 10, ""}}) {
        ProductPrices before;
        ProductPrices after;
        std::copy(c.before.begin(), c.before.end(), before.levels.begin());
        std::copy(c.after.begin(), c.after.end(), after.levels.begin());
        before.averagePurchase = c.costBefore;
        after.averagePurchase = c.costAfter;
        QStringList reasons;
        for (const LevelOrderChange& change : changedLevelOrder(before, after))
            reasons += change.reason;
        EXPECT_EQ(reasons.join("; ").toStdString(), c.reasons)
            << c.before.front() << " -> " << c.after.front();
    }
}

TEST(ChangeRules, FarFromExpected) {
    ChangeDefinition definition;
    definition.sourceClass = 3;
    definition.targetClass = 6;
    definition.levels[0] = {1.5, QStringLiteral("hinta"), false};
    definition.levels[2] = {1.2, QStringLiteral("hinta"), true};
    definition.priceChangeLimit = 1.0;
    definition.roundingStep = RoundingStep::Five;
    definition.purchaseCoefficient = 2.0;
    definition.salesOrderFromVat0 = true;
    const VatRates rates{{3, 24.0}, {6, 25.5}};
    struct Case {
        const char* table;
        const char* field;
        double before;
        double after;
        bool far;
    };
    for (const Case& c : std::vector<Case>{
             {"TUOTE", "HINTA", 10, 15, false},
             {"TUOTE", "HINTA", 10, 15.05, false},  // one step
             {"TUOTE", "HINTA", 10, 15.06, true},
             {"TUOTE", "HINTA", 10, 14.94, true},
             {"TUOTE", "HINTA", 0.5, 0.5, false},  // below the limit
             {"TUOTE", "HINTA", 0.5, 0.75, true},
             {"TUOTE", "HINTA3", 10, 12, false},
             {"TUOTE", "KAKSOISHINTA", 10, 90, false},  // no source, nothing expected
             {"TUOTE", "KESKIHINTA", 3, 6.01, false},   // a cent
             {"TUOTE", "KESKIHINTA", 3, 6.02, true},
             {"MYYMALAHINNAT", "Hinta1", 0.5, 0.75, false},   // the limit is the products'
             {"MYYMALAHINNAT", "Hinta3", 124, 125.5, false},  // from the VAT-free price
             {"MYYMALAHINNAT", "Hinta3", 124, 125.6, true},
             {"ASALE", "Hinta", 10, 15.06, true},
             {"MTRIVI", "Ahinta", 12.4, 12.55, false},
             {"MTRIVI", "Ahinta", 12.4, 12.57, true}}) {
        ChangedField field;
        field.table = c.table;
        field.field = c.field;
        data::TFieldCacheItem item;
        item.name = c.field;
        item.kindWord = static_cast<quint32>(data::Kind::Float);
        field = describeField(c.table, item);
        EXPECT_EQ(ExpectedChange(definition, rates, field).isFar(c.before, c.after), c.far)
            << c.table << ' ' << c.field << ' ' << c.before << " -> " << c.after;
    }
}

TEST(ChangeRules, OrdersAtRisk) {
    const QDate day(2024, 9, 1);
    EXPECT_EQ(orderRisk({1, 2, day}, day), "osa tilauksesta toimitettu");
    EXPECT_EQ(orderRisk({0, 2, day.addDays(-1)}, day), "toimitus 31.8.2024 ennen muutospäivää");
    EXPECT_EQ(orderRisk({0, 2, day}, day), "");
    EXPECT_EQ(orderRisk({0, 2, {}}, day), "");
    EXPECT_EQ(orderRisk({2, 0, day.addDays(-1)}, day), "");  // nothing is left to deliver
}
