#include "vatchange/orders/order_module.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include "data/clock.h"
#include "tests/orders/order_company.h"

using namespace vatchange;
using test::Fields;
using test::OrderCompany;

namespace {

SalesOrderArguments salesChange(int target = 5) {
    SalesOrderArguments arguments;
    arguments.sourceClass = 3;
    arguments.targetClass = target;
    return arguments;
}

PurchaseOrderArguments purchaseChange(int target = 5) {
    PurchaseOrderArguments arguments;
    arguments.sourceClass = 3;
    arguments.targetClass = target;
    return arguments;
}

void addSalesOrder(OrderCompany& company, int number, int state, int method,
                   const QDate& delivery = {}) {
    company.add("MT", {{"Numero", number},
                       {"AsiakasNimi", "Åke Öljy"},
                       {"Toimitustila", state},
                       {"Veloitustapa", method},
                       {"Toimituspaiva", delivery},
                       {"Summa", 1.0},
                       {"Kate", 2.0},
                       {"KateAlv0", 3.0},
                       {"SummaAlv0", 4.0}});
}

struct Totals {
    double summa, kate, kateAlv0, summaAlv0;
    bool operator==(const Totals&) const = default;
};

void PrintTo(const Totals& t, std::ostream* out) {
    *out << t.summa << " / " << t.kate << " / " << t.kateAlv0 << " / " << t.summaAlv0;
}

Totals totalsOf(OrderCompany& company, int order) {
    return {company.number("MT", {order}, "Summa"), company.number("MT", {order}, "Kate"),
            company.number("MT", {order}, "KateAlv0"), company.number("MT", {order}, "SummaAlv0")};
}

double salesNumber(OrderCompany& company, int order, int row, const QString& field) {
    return company.number("MTRIVI", {order, row}, field);
}

// One order with every kind of row. After the change to 25 % (VAT0 = price / 1.25):
//   row 1  plain                                40 / 32, margins 20 / 16
//   row 2  nothing left to deliver              stays 40 / 33 (as stored: 4 x 8.25), 20 / 17
//   row 3  another class                        stays 10 / 4 x 2 = 8, 10-20 = -10, 8-16 = -8
//   row 4  structure parent, 5 package child, 6 variant parent: converted, not counted
//   row 7  discount 50: 20 / 16, margin 0: mark 1, margins not counted
//   row 8  variant child, returned: -40 / -32, -20 / -16
//   row 9  package parent: 40 / 32, 20 / 16
void addOrderOfAllKinds(OrderCompany& company) {
    addSalesOrder(company, 100, 3, 1);
    company.addSalesRow(100, 1);
    company.addSalesRow(100, 2, {{"Toimitettava", 0.0}, {"AhintaAlv0", 8.25}});
    company.addSalesRow(100, 3, {{"Verokanta", 2}, {"AhintaAlv0", 2.0}, {"Netto", 10.0}});
    company.addSalesRow(100, 4, {{"RakenneEmo", true}});
    company.addSalesRow(100, 5, {{"PakettiLapsi", true}});
    company.addSalesRow(100, 6, {{"OnVariKokoEmo", true}});
    company.addSalesRow(100, 7, {{"Alennus", 50.0}});
    company.addSalesRow(100, 8, {{"VariKokoLapsi", true}, {"Maara", -4.0}, {"Toimitettava", -4.0}});
    company.addSalesRow(100, 9, {{"PakettiEmo", true}, {"RakenneLapsi", true}});
}
// 40+40+10+20-40+40; 20+20-10-20+20; 16+17-8-16+16; 32+33+8+16-32+32
const Totals kAllKinds{110, 30, 25, 89};

TEST(SalesOrders, ConvertEveryKindOfOrder) {
    OrderCompany company;
    addOrderOfAllKinds(company);
    addSalesOrder(company, 101, 4, 1);  // delivered already
    company.addSalesRow(101, 1);
    addSalesOrder(company, 102, 0, 14);
    company.addSalesRow(102, 1);
    addSalesOrder(company, 103, 3, 16);
    company.addSalesRow(103, 1);
    addSalesOrder(company, 104, -1, 4);  // a method that keeps price and total
    company.addSalesRow(104, 1, {{"Netto", 41.0}});
    addSalesOrder(company, 105, 0, 1);  // no rows
    company.addSalesRow(999, 1);        // no header
    const std::vector<data::KeyValues> untouchedRows{{100, 2}, {100, 3}, {101, 1},
                                                     {102, 1}, {103, 1}, {999, 1}};
    std::vector<QByteArray> before;
    before.reserve(untouchedRows.size());
    for (const auto& key : untouchedRows)
        before.push_back(company.bytes("MTRIVI", key));

    data::Clock::Override clock([] { return QDateTime(QDate(2024, 9, 1), QTime(7, 5, 3, 42)); });
    AlvMuutosMyyntitilauksiin(company.database(), salesChange(), company.ports());

    EXPECT_EQ(company.messages, QStringList{"Myyntitilaukset konvertoitu."});
    EXPECT_EQ(company.log, (QStringList{"tilaus 102 ohitetaan ", "tilaus 103 ohitetaan "}));
    for (size_t i = 0; i < untouchedRows.size(); ++i)
        EXPECT_EQ(company.bytes("MTRIVI", untouchedRows[i]), before[i]) << i;
    for (const int row : {1, 4, 5, 6, 7, 8, 9}) {
        EXPECT_EQ(salesNumber(company, 100, row, "Verokanta"), 5) << row;
        EXPECT_EQ(salesNumber(company, 100, row, "OstoVero"), 5) << row;
        EXPECT_EQ(salesNumber(company, 100, row, "OstohintaAlv0"), 4) << row;
    }
    EXPECT_EQ(salesNumber(company, 100, 7, "Netto"), 20);
    EXPECT_EQ(salesNumber(company, 100, 7, "Kate"), 1);
    EXPECT_EQ(salesNumber(company, 100, 7, "KateAlv0"), 0);
    EXPECT_EQ(salesNumber(company, 100, 8, "Netto"), -40);
    EXPECT_EQ(salesNumber(company, 104, 1, "Netto"), 41);
    EXPECT_EQ(salesNumber(company, 104, 1, "Kate"), 21);
    EXPECT_EQ(totalsOf(company, 100), kAllKinds);
    for (const int order : {101, 102, 103})
        EXPECT_EQ(totalsOf(company, order), (Totals{1, 2, 3, 4})) << order;
    EXPECT_EQ(totalsOf(company, 104), (Totals{41, 21, 16, 32}));
    EXPECT_EQ(totalsOf(company, 105), (Totals{0, 0, 0, 0}));

    EXPECT_EQ(company.traces.value(0), "07:05:03:042 100 1");
    EXPECT_EQ(company.traces.size(), 8);
    EXPECT_EQ(company.progress.back(), (std::pair<qint64, qint64>{5, 5}));
    EXPECT_EQ(company.statuses.size(), 5);
}

TEST(SalesOrders, SecondRunChangesNoRow) {
    OrderCompany company;
    addOrderOfAllKinds(company);
    // no margin with VAT (40-4x10), -8 without (32-4x10; class 0 has no rate): marked in the first
    // run, counted in the second
    addSalesOrder(company, 200, 1, 4);
    company.addSalesRow(200, 1, {{"Ostohinta", 10.0}, {"OstoVero", 0}});
    SalesOrderArguments change = salesChange();
    AlvMuutosMyyntitilauksiin(company.database(), change, company.ports());
    EXPECT_EQ(salesNumber(company, 200, 1, "Kate"), 1);
    EXPECT_EQ(totalsOf(company, 200), (Totals{40, 0, 0, 32}));
    const auto rows = company.records("MTRIVI");

    change.salesCoefficient = 3;
    change.purchaseCoefficient = 3;
    AlvMuutosMyyntitilauksiin(company.database(), change, company.ports());
    EXPECT_EQ(company.records("MTRIVI"), rows);
    EXPECT_EQ(totalsOf(company, 100), kAllKinds);  // row 7 counts now, with 20-4x5 and 16-4x4
    EXPECT_EQ(totalsOf(company, 200), (Totals{40, 0, -8, 32}));
}

TEST(SalesOrders, CoefficientsAndDecimalsReachTheRows) {
    struct Case {
        double sales, purchase;
        bool keep;
        int decimals;
        double ahinta, netto, ostohinta;
    };
    for (const Case& c : {Case{0, -1, false, 2, 10, 40, 5},              // not above 0: 1
                          Case{1.0625, 1.5, false, 1, 10.6, 42.4, 7.5},  // 10.625 -> 10.6
                          Case{9, 1, true, 3, 10, 40, 5}}) {             // 8 x 1.25
        OrderCompany company;
        addSalesOrder(company, 1, 0, 1);
        company.addSalesRow(1, 1);
        SalesOrderArguments change = salesChange();
        change.salesCoefficient = c.sales;
        change.purchaseCoefficient = c.purchase;
        change.keepVat0 = c.keep;
        change.priceDecimals = c.decimals;
        AlvMuutosMyyntitilauksiin(company.database(), change, company.ports());
        EXPECT_DOUBLE_EQ(salesNumber(company, 1, 1, "Ahinta"), c.ahinta);
        EXPECT_EQ(salesNumber(company, 1, 1, "Netto"), c.netto);
        EXPECT_EQ(salesNumber(company, 1, 1, "Ostohinta"), c.ostohinta);
    }
}

TEST(SalesOrders, DeliveryLimitLeavesOutEarlierAndUndatedOrders) {
    OrderCompany company;
    addSalesOrder(company, 1, 0, 1, QDate(2024, 8, 31));
    addSalesOrder(company, 2, 0, 1, QDate(2024, 9, 1));
    addSalesOrder(company, 3, 0, 1, QDate(2025, 1, 2));
    addSalesOrder(company, 4, 0, 1);
    for (int order = 1; order <= 4; ++order)
        company.addSalesRow(order, 1);
    SalesOrderArguments change = salesChange();
    change.deliveryLimit = QDate(2024, 9, 1);
    AlvMuutosMyyntitilauksiin(company.database(), change, company.ports());
    const auto classes = [&] {
        QStringList found;
        for (int order = 1; order <= 4; ++order)
            found += QString::number(salesNumber(company, order, 1, "Verokanta"));
        return found.join(u' ');
    };
    EXPECT_EQ(classes(), "3 5 5 3");
    EXPECT_EQ(totalsOf(company, 4), (Totals{1, 2, 3, 4}));

    change.deliveryLimit = QDate();
    AlvMuutosMyyntitilauksiin(company.database(), change, company.ports());
    EXPECT_EQ(classes(), "5 5 5 5");
}

// Class 200 fits the sales class of a row but not its one-byte purchase class.
TEST(SalesOrders, FailureInsideAnOrderKeepsWhatIsPosted) {
    OrderCompany company;
    addSalesOrder(company, 1, 0, 1);
    company.addSalesRow(1, 1, {{"OstoVero", 2}});
    addSalesOrder(company, 2, 0, 1);
    company.addSalesRow(2, 1, {{"OstoVero", 2}});
    company.addSalesRow(2, 2);
    company.addSalesRow(2, 3, {{"OstoVero", 2}});
    const QByteArray second = company.bytes("MTRIVI", {2, 2});
    const QByteArray third = company.bytes("MTRIVI", {2, 3});
    try {
        AlvMuutosMyyntitilauksiin(company.database(), salesChange(200), company.ports());
        ADD_FAILURE() << "no error";
    } catch (const data::DataError& error) {
        EXPECT_EQ(error.kind(), data::ErrorKind::BadValue);
        for (const char* part : {"MTRIVI", "tilaus 2, rivi 2", "OstoVero", "200"})
            EXPECT_TRUE(error.finnish().contains(part)) << error.what();
    }
    EXPECT_EQ(salesNumber(company, 1, 1, "Verokanta"), 200);
    EXPECT_NE(totalsOf(company, 1), (Totals{1, 2, 3, 4}));
    EXPECT_EQ(salesNumber(company, 2, 1, "Verokanta"), 200);
    EXPECT_EQ(company.bytes("MTRIVI", {2, 2}), second);
    EXPECT_EQ(company.bytes("MTRIVI", {2, 3}), third);
    EXPECT_EQ(totalsOf(company, 2), (Totals{1, 2, 3, 4}));
    EXPECT_TRUE(company.messages.isEmpty());

    // Nothing stays locked behind it.
    const auto other = company.otherProgram();
    const auto rows = other->openTable("MTRIVI");
    for (const auto& record : rows->fromEnd(0, data::Direction::Forward, 10)) {
        EXPECT_TRUE(rows->lock(record.id, std::chrono::milliseconds(0)));
        rows->unlock(record.id);
    }
}

TEST(SalesOrders, LockedRowEndsTheConversion) {
    OrderCompany company;
    addSalesOrder(company, 1, 0, 1);
    for (int row = 1; row <= 3; ++row)
        company.addSalesRow(1, row);
    const auto other = company.otherProgram();
    const auto rows = other->openTable("MTRIVI");
    const auto held = rows->seek(0, data::SeekOp::Equal, {1, 2}, 1);
    ASSERT_TRUE(rows->lock(held.at(0).id, std::chrono::milliseconds(0)));
    try {
        AlvMuutosMyyntitilauksiin(company.database(), salesChange(), company.ports());
        ADD_FAILURE() << "no error";
    } catch (const data::DataError& error) {
        EXPECT_EQ(error.kind(), data::ErrorKind::Locked);
        EXPECT_TRUE(error.finnish().contains("tilaus 1, rivi 2")) << error.what();
    }
    EXPECT_EQ(salesNumber(company, 1, 1, "Verokanta"), 5);
    EXPECT_EQ(salesNumber(company, 1, 2, "Verokanta"), 3);
    EXPECT_EQ(salesNumber(company, 1, 3, "Verokanta"), 3);

    rows->unlock(held.at(0).id);
    AlvMuutosMyyntitilauksiin(company.database(), salesChange(), company.ports());
    EXPECT_EQ(salesNumber(company, 1, 3, "Verokanta"), 5);
    EXPECT_EQ(totalsOf(company, 1), (Totals{120, 60, 48, 96}));
}

TEST(SalesOrders, StoppedRunFinishesTheTotalsInHand) {
    OrderCompany company;
    addSalesOrder(company, 1, 0, 1);
    for (int row = 1; row <= 3; ++row)
        company.addSalesRow(1, row);
    addSalesOrder(company, 2, 0, 1);
    company.addSalesRow(2, 1);
    company.cancelAfter = 2;  // asked before the order and before each row: stops before row 2
    AlvMuutosMyyntitilauksiin(company.database(), salesChange(), company.ports());
    EXPECT_EQ(salesNumber(company, 1, 1, "Verokanta"), 5);
    EXPECT_EQ(salesNumber(company, 1, 2, "Verokanta"), 3);
    EXPECT_EQ(totalsOf(company, 1), (Totals{120, 60, 48, 96}));
    EXPECT_EQ(totalsOf(company, 2), (Totals{1, 2, 3, 4}));
    EXPECT_TRUE(company.messages.isEmpty());
}

TEST(PurchaseOrders, ConvertEveryKindOfRow) {
    OrderCompany company;
    const auto addOrder = [&](int number, int state) {
        company.add("WINOT", {{"TilausNro", number},
                              {"Toimittaja", "ABC"},
                              {"Tila", state},
                              {"Summa", 1.0},
                              {"SummaAlv0", 2.0}});
    };
    addOrder(10, 4);
    company.addPurchaseRow(10, 1);
    company.addPurchaseRow(10, 2, {{"Tulematta", 0.0}});
    company.addPurchaseRow(10, 3, {{"AlvLuokka", 2}});
    company.addPurchaseRow(10, 4, {{"Tulematta", -1.0}, {"Alennus", 125.0}});
    company.addPurchaseRow(10, 5, {{"VariKokoLapsi", true}});
    company.addPurchaseRow(10, 6, {{"OnVariKokoEmo", true}, {"Alennus", 50.0}});
    addOrder(11, 5);
    company.addPurchaseRow(11, 1);
    const QByteArray delivered = company.bytes("WINOTRI", {10, 2});
    const QByteArray otherClass = company.bytes("WINOTRI", {10, 3});
    const QByteArray otherOrder = company.bytes("WINOTRI", {11, 1});

    PurchaseOrderArguments change = purchaseChange();
    change.purchaseCoefficient = 1.5;
    AlvMuutosOstotilauksiin(company.database(), change, company.ports());

    EXPECT_EQ(company.messages, QStringList{"Ostotilaukset konvertoitu."});
    EXPECT_TRUE(company.traces.isEmpty());
    EXPECT_EQ(company.bytes("WINOTRI", {10, 2}), delivered);
    EXPECT_EQ(company.bytes("WINOTRI", {10, 3}), otherClass);
    EXPECT_EQ(company.bytes("WINOTRI", {11, 1}), otherOrder);
    for (const int row : {1, 4, 5, 6}) {
        EXPECT_EQ(company.number("WINOTRI", {10, row}, "AlvLuokka"), 5) << row;
        EXPECT_EQ(company.number("WINOTRI", {10, row}, "OstoHinta"), 15) << row;
        EXPECT_EQ(company.number("WINOTRI", {10, row}, "OstoHintaAlv0"), 12) << row;
    }
    EXPECT_EQ(company.number("WINOTRI", {10, 4}, "Summa"), -15);  // 15 x 4 x -0.25
    // 60+40+40-15+30 (row 5 is a variant child); VAT0 48+36+36-12+24
    EXPECT_EQ(company.number("WINOT", {10}, "Summa"), 155);
    EXPECT_EQ(company.number("WINOT", {10}, "SummaAlv0"), 132);
    EXPECT_EQ(company.number("WINOT", {11}, "Summa"), 1);

    const auto rows = company.records("WINOTRI");
    const auto headers = company.records("WINOT");
    AlvMuutosOstotilauksiin(company.database(), change, company.ports());
    EXPECT_EQ(company.records("WINOTRI"), rows);
    EXPECT_EQ(company.records("WINOT"), headers);
}

TEST(PurchaseOrders, KeptVat0GivesThePrice) {
    OrderCompany company;
    company.add("WINOT", {{"TilausNro", 7}, {"Tila", 0}});
    company.addPurchaseRow(7, 1, {{"Alennus", 33.3}});
    PurchaseOrderArguments change = purchaseChange();
    change.keepVat0 = true;
    change.purchaseCoefficient = 2;
    change.priceDecimals = 4;
    AlvMuutosOstotilauksiin(company.database(), change, company.ports());
    EXPECT_EQ(company.number("WINOTRI", {7, 1}, "OstoHinta"), 11.25);  // 9 x 1.25
    EXPECT_EQ(company.number("WINOTRI", {7, 1}, "OstoHintaAlv0"), 9);
    // The discount field is a single: 33.3 is 8729395 x 2^-18 there. 45 x (1 - 0.33299999237..)
    const double left = 1 - 33.299999237060546875 / 100;
    EXPECT_EQ(company.number("WINOTRI", {7, 1}, "Summa"), 45 * left);
    EXPECT_EQ(company.number("WINOT", {7}, "SummaAlv0"), 36 * left);
    ASSERT_EQ(company.traces.size(), 2);
    const QRegularExpression form("^\\d\\d:\\d\\d:\\d\\d:\\d{3} (\\D+): (\\d+[.,]\\d\\d) (.*)$");
    const auto before = form.match(company.traces.at(0));
    const auto after = form.match(company.traces.at(1));
    EXPECT_EQ(before.captured(1), "Ennen");
    EXPECT_EQ(before.captured(2).replace(u',', u'.'), "10.00");
    EXPECT_EQ(before.captured(3), "hintades: 4");
    EXPECT_EQ(after.captured(1), "Jälkseen");
    EXPECT_EQ(after.captured(2).replace(u',', u'.'), "11.25");
}

TEST(EmptySelection, StillEndsWithItsMessage) {
    OrderCompany company;
    AlvMuutosMyyntitilauksiin(company.database(), salesChange(), company.ports());
    AlvMuutosOstotilauksiin(company.database(), purchaseChange(), company.ports());
    EXPECT_EQ(company.messages,
              (QStringList{"Myyntitilaukset konvertoitu.", "Ostotilaukset konvertoitu."}));
    EXPECT_TRUE(company.log.isEmpty());
}

}  // namespace
