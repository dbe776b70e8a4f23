#include "vatchange/orders/order_rules.h"

#include <gtest/gtest.h>

#include <QString>
#include <map>
#include <vector>

using namespace vatchange;

namespace {

// Classes of these tests: 3 is the source. Rates of 25 and 60 % give factors without a rounding
// error, so that the numbers below can be followed by hand to the last bit.
double testFactor(qint64 vatClass) {
    static const std::map<qint64, double> rates{{2, 14}, {3, 24}, {4, 25.5}, {5, 25}, {6, 60}};
    const auto found = rates.find(vatClass);
    return 1 + (found == rates.end() ? 0.0 : found->second) / 100;
}

Amount single(double value) {
    return Amount(value, Amount::Precision::Single);
}

struct SalesCase {
    const char* name;
    struct {
        double ahinta = 10, ahintaAlv0 = 8, maara = 4, alennus = 0, ostohinta = 5, netto = 77.77;
        int ostoVero = 3;
    } row;
    struct {
        bool keep = false, special = false;
        double sales = 1.0, purchase = 1.0;
        int target = 5, decimals = 2;
    } change;
    struct {
        double ahinta, ahintaAlv0, netto, kate, kateAlv0, ostohinta, ostohintaAlv0;
        int ostoVero;
    } expected;
};

const SalesCase kSalesCases[] = {
    // Ahinta 10, Alv0 10/1.25 = 8; gross 4x10, gross0 4x8; margins 40-4x5, 32-4x4
    {"coefficient 1", {}, {}, {10, 8, 40, 20, 16, 5, 4, 5}},
    {"coefficients not above 0 are 1",
     {},
     {.sales = 0, .purchase = -1},
     {10, 8, 40, 20, 16, 5, 4, 5}},
    // 10.5 x 1.25 = 13.125 -> 13.13 (to even: 13.12); 52.52-20; 42-16
    {"VAT0 kept, half a cent goes away from zero",
     {.ahintaAlv0 = 10.5},
     {.keep = true},
     {13.13, 10.5, 52.52, 32.52, 26, 5, 4, 5}},
    // 10.5 x 1.25 = 13.125 -> 13.13; /1.25 = 10.504; 52.52-20; 42.016-16 = 26.016
    {"another coefficient rounds it, half away from zero",
     {.ahinta = 10.5},
     {.sales = 1.25},
     {13.13, 13.13 / 1.25, 52.52, 32.52, 26.02, 5, 4, 5}},
    // 1 x 10.125: fraction 12.5 cents -> 12 (even); 10.12-5; 8.1-4
    {"row total, tie to even below",
     {.ahinta = 10.125, .maara = 1},
     {},
     {10.125, 8.1, 10.12, 5.12, 4.1, 5, 4, 5}},
    // 4x10x0.995-20, 4x8x0.995-16; above 100 there is no discount
    {"discount 0.5", {.alennus = 0.5}, {}, {10, 8, 39.8, 19.8, 15.84, 5, 4, 5}},
    {"discount just above 100", {.alennus = 100.001}, {}, {10, 8, 40, 20, 16, 5, 4, 5}},
    // 3 x 1.1 in a single is 13841203/2^22 = 3.2999999523162841796875; /1.25 = 2.6399999618..;
    // 40-13.19999980926.. = 26.800..; 32-10.55999984741.. = 21.440..
    {"purchase price is a single",
     {.ostohinta = 3},
     {.purchase = 1.1},
     {10, 8, 40, 26.8, 21.44, 3.2999999523162841796875, 2.63999996185302734375, 5}},
    // 40010.01-10.0048828125 = 40000.0051171875, as a single (steps of 1/256) 40000.00390625,
    // which rounds to 40000.00 (a double would give 40000.01); VAT0: 32008.008-8.00390625 =
    // 32000.00409375
    {"margin is a single before it is rounded",
     {.ahinta = 40010.01, .maara = 1, .ostohinta = 10.0048828125},
     {},
     {40010.01, 40010.01 / 1.25, 40010.01, 40000, 32000, 10.0048828125, 8.00390625, 5}},
};

TEST(SalesRow, ConvertsAsDerivedByHand) {
    for (const SalesCase& c : kSalesCases) {
        SCOPED_TRACE(c.name);
        SalesRow row;
        row.verokanta = 3;
        row.ostoVero = c.row.ostoVero;
        row.toimitettava = 1;
        row.maara = c.row.maara;
        row.alennus = c.row.alennus;
        row.ahinta = c.row.ahinta;
        row.ahintaAlv0 = c.row.ahintaAlv0;
        row.ostohinta = single(c.row.ostohinta);
        row.ostohintaAlv0 = 999;
        row.netto = c.row.netto;
        row.kate = single(999);
        row.kateAlv0 = single(999);

        SalesOrderChange change;
        change.sourceClass = 3;
        change.targetClass = c.change.target;
        change.keepVat0 = c.change.keep;
        change.priceDecimals = c.change.decimals;
        change.salesCoefficient = c.change.sales;
        change.purchaseCoefficient = c.change.purchase;
        convertSalesRow(row, change, c.change.special, testFactor);

        EXPECT_EQ(row.verokanta, c.change.target);
        EXPECT_EQ(row.ostoVero, c.expected.ostoVero);
        EXPECT_EQ(row.ahinta, c.expected.ahinta);
        EXPECT_EQ(row.ahintaAlv0, c.expected.ahintaAlv0);
        EXPECT_EQ(row.netto, c.expected.netto);
        EXPECT_EQ(row.kate, single(c.expected.kate));
        EXPECT_EQ(row.kateAlv0, single(c.expected.kateAlv0));
        EXPECT_EQ(row.ostohinta, c.expected.ostohinta);
        EXPECT_EQ(row.ostohintaAlv0, c.expected.ostohintaAlv0);
    }
}

TEST(ChargingMethod, SetsAreAsListed) {
    QString keeps;
    QString skipped;
    for (qint64 method = -40; method <= 70; ++method) {
        if (OnHintaVeloitustapa(method))
            keeps += QString::number(method) + u' ';
        if (isSkippedChargingMethod(method))
            skipped += QString::number(method) + u' ';
    }
    EXPECT_EQ(keeps.toStdString(), "4 5 7 8 10 11 13 14 16 19 20 21 ");
    EXPECT_EQ(skipped.toStdString(), "14 16 ");
}

// A header that keeps its totals in singles loses the euro at 2^24, as its fields would.
TEST(SalesTotals, KeepTheHeadersPrecision) {
    SalesTotals totals{single(0), single(0), single(0), single(0)};
    SalesRow row;
    for (const double netto : {16777216.0, 1.0}) {
        row.netto = netto;
        addSalesRow(totals, row, true);
    }
    EXPECT_EQ(totals.summa, 16777216);
}

TEST(PurchaseRow, ConvertsAsDerivedByHand) {
    struct Case {
        const char* name;
        bool keep;
        double coefficient, maara, alennus, price, vat0;  // before
        double newPrice, newVat0, summa;
    };
    const Case cases[] = {
        // 10 stays; 10/1.25; 4x10
        {"coefficient 1", false, 1.0, 4, 0, 10, 9, 10, 8, 40},
        {"coefficient not above 0 is 1", false, -1.0, 4, 0, 10, 9, 10, 8, 40},
        // 10.0078125 x 1.5 = 15.01171875; /1.25 = 12.009375; nothing is rounded
        {"coefficient 1.5", false, 1.5, 4, 0, 10.0078125, 9, 15.01171875, 12.009375, 60.046875},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PurchaseRow row;
        row.alvLuokka = 3;
        row.maara = c.maara;
        row.alennus = c.alennus;
        row.ostoHinta = c.price;
        row.ostoHintaAlv0 = c.vat0;
        row.summa = 999;
        PurchaseOrderChange change;
        change.keepVat0 = c.keep;
        change.sourceClass = 3;
        change.targetClass = 5;
        change.coefficient = c.coefficient;
        convertPurchaseRow(row, change, testFactor);
        EXPECT_EQ(row.alvLuokka, 5);
        EXPECT_EQ(row.ostoHinta, c.newPrice);
        EXPECT_EQ(row.ostoHintaAlv0, c.newVat0);
        EXPECT_EQ(row.summa, c.summa);
    }
}

}  // namespace
