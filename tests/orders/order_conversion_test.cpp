// What a whole run against the model does not show: failures, locks, stops, status and traces.
#include <gtest/gtest.h>

#include <QLoggingCategory>

#include "tests/support/recording_ports.h"
#include "tests/support/test_company.h"
#include "vatchange/orders/alv_muutos_mt.h"
#include "vatchange/orders/alv_muutos_ot.h"

using namespace vatchange;

namespace {

/// Orders of rows 10.00 / 8.00 x 4, purchased at 5.00 / 4.00, class 3; 25 % in every other class.
class OrderConversion : public testing::Test {
  protected:
    OrderConversion() : m_company({}) {
        m_sales.sourceClass = m_purchases.sourceClass = 3;
        m_sales.targetClass = m_purchases.targetClass = 5;
    }

    void addSalesOrder(int order, int rows, int purchaseClass = 3) {
        m_company.exec(QStringLiteral("insert into MT (Numero, Summa) values (%1, 1)").arg(order));
        for (int row = 1; row <= rows; ++row)
            m_company.exec(
                QStringLiteral("insert into MTRIVI (TilausNro, RiviNro, Verokanta, OstoVero, "
                               "Maara, Toimitettava, Ahinta, AhintaAlv0, Ostohinta, Netto, Kate) "
                               "values (%1, %2, 3, %3, 4, 4, 10, 8, 5, 40, 20)")
                    .arg(order)
                    .arg(row)
                    .arg(purchaseClass));
    }
    void addPurchaseOrder(int order, int rows) {
        m_company.exec(
            QStringLiteral("insert into WINOT (TilausNro, Summa) values (%1, 1)").arg(order));
        for (int row = 1; row <= rows; ++row)
            m_company.exec(QStringLiteral("insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, "
                                          "Tulematta, Maara, OstoHinta, OstoHintaAlv0) "
                                          "values (%1, %2, 3, 4, 4, 10, 9)")
                               .arg(order)
                               .arg(row));
    }
    QString classesOf(const char* table, const char* field) {
        return test::rows(m_company.database(),
                          QStringLiteral("select %1 from %2 order by TilausNro, RiviNro")
                              .arg(QLatin1String(field), QLatin1String(table)))
            .join(u' ');
    }

    bool convertSales() {
        return AlvMuutosMyyntitilauksiin(m_company.database(), m_sales, m_factor, m_ports, m_rows);
    }
    bool convertPurchases() {
        return AlvMuutosOstotilauksiin(m_company.database(), m_purchases, m_factor, m_ports,
                                       m_rows);
    }
    /// The conversion fails; its text names all parts.
    template <typename Convert>
    void expectError(data::ErrorKind kind, const QStringList& parts, Convert&& convert) {
        const data::DataError error = test::thrownBy(convert);
        EXPECT_EQ(error.kind(), kind);
        for (const QString& part : parts)
            EXPECT_TRUE(error.finnish().contains(part)) << error.what();
        EXPECT_TRUE(m_ports.messages.isEmpty());
    }

    test::TestCompany m_company;
    test::RecordingPorts m_ports;
    SalesOrderChange m_sales;
    PurchaseOrderChange m_purchases;
    VatFactor m_factor = [](qint64) { return 1.25; };
    qint64 m_rows = 0;
};

// Class 200 fits the sales class of a row but not its one-byte purchase class, which only rows of
// the source class take.
TEST_F(OrderConversion, FailureKeepsPostedRowsAndNamesTheRow) {
    addSalesOrder(1, 1, 2);
    addSalesOrder(2, 3);
    m_company.exec(
        QStringLiteral("update MTRIVI set OstoVero = 2 where TilausNro = 2 and "
                       "RiviNro <> 2"));
    m_sales.targetClass = 200;
    expectError(data::ErrorKind::BadValue,
                {"MTRIVI", "tilaus 2, rivi 2: kenttä OstoVero, arvo \"200\". "},
                [this] { convertSales(); });
    EXPECT_EQ(classesOf("MTRIVI", "Verokanta"), "200 200 3 3");
    EXPECT_EQ(m_rows, 2);
    EXPECT_EQ(m_company.number("select Summa from MT where Numero = 1"), 40);
    EXPECT_EQ(m_company.number("select Summa from MT where Numero = 2"), 1);
    // no lock remains
    const auto other = m_company.otherProgram();
    for (const char* table : {"MT", "MTRIVI"}) {
        const auto rows = other->openTable(QLatin1String(table));
        for (const auto& record : rows->fromEnd(0, data::Direction::Forward, 10)) {
            EXPECT_TRUE(rows->lock(record.id, std::chrono::milliseconds(0))) << table;
            rows->unlock(record.id);
        }
    }
}

TEST_F(OrderConversion, LockedRowFailsAndARerunFinishes) {
    addSalesOrder(1, 3);
    addPurchaseOrder(7, 3);
    const auto other = m_company.otherProgram();
    for (const auto& [name, order, convert] :
         {std::tuple<const char*, int, std::function<bool()>>{"MTRIVI", 1,
                                                              [this] { return convertSales(); }},
          {"WINOTRI", 7, [this] { return convertPurchases(); }}}) {
        SCOPED_TRACE(name);
        const char* field = order == 1 ? "Verokanta" : "AlvLuokka";
        const auto rows = other->openTable(QLatin1String(name));
        const auto held = rows->seek(0, data::SeekOp::Equal, {order, 2}, 1);
        ASSERT_TRUE(rows->lock(held.at(0).id, std::chrono::milliseconds(0)));
        expectError(data::ErrorKind::Locked, {QStringLiteral("tilaus %1, rivi 2. ").arg(order)},
                    convert);
        EXPECT_EQ(classesOf(name, field), "5 3 3");
        rows->unlock(held.at(0).id);
        EXPECT_TRUE(convert());
        EXPECT_EQ(classesOf(name, field), "5 5 5");
        m_ports.messages.clear();
    }
    EXPECT_EQ(m_rows, 6);
    EXPECT_EQ(m_company.number("select Summa from MT"), 120);
    EXPECT_EQ(m_company.number("select Summa from WINOT"), 120);
}

TEST_F(OrderConversion, StopFinishesTheCurrentTotals) {
    for (const int order : {1, 2}) {
        addSalesOrder(order, 3);
        addPurchaseOrder(order, 3);
    }
    // asked before each order and each row: stops before row 2
    m_ports.stop = [left = 2]() mutable { return left-- == 0; };
    EXPECT_FALSE(convertSales());
    EXPECT_EQ(classesOf("MTRIVI", "Verokanta"), "5 3 3 3 3 3");
    m_ports.stop = [left = 2]() mutable { return left-- == 0; };
    EXPECT_FALSE(convertPurchases());
    EXPECT_EQ(classesOf("WINOTRI", "AlvLuokka"), "5 3 3 3 3 3");
    EXPECT_EQ(m_company.number("select Summa from MT where Numero = 1"), 120);
    EXPECT_EQ(m_company.number("select Summa from MT where Numero = 2"), 1);
    EXPECT_EQ(m_company.number("select Summa from WINOT where TilausNro = 1"), 40);
    EXPECT_EQ(m_company.number("select Summa from WINOT where TilausNro = 2"), 1);
    EXPECT_TRUE(m_ports.messages.isEmpty());
}

TEST_F(OrderConversion, ReportsStatusAndTrace) {
    addSalesOrder(12, 1);
    addPurchaseOrder(34, 1);
    m_purchases.keepVat0 = true;
    m_purchases.priceDecimals = 4;
    m_company.setNow(QDateTime(QDate(2024, 9, 1), QTime(7, 5, 3, 42)));
    QLoggingCategory::setFilterRules(QStringLiteral("taksavaihe.orders.debug=true"));
    const QStringList traces = test::tracedBy([this] {
        EXPECT_TRUE(convertSales());
        EXPECT_TRUE(convertPurchases());
    });
    QLoggingCategory::setFilterRules({});

    const QString comma(QLocale().decimalPoint());
    EXPECT_EQ(traces.join(u'\n').replace(comma, QLatin1String(".")).toStdString(),
              "07:05:03:042 12 1\n"
              "07:05:03:042 Ennen: 10.00 hintades: 4\n"
              "07:05:03:042 Jälkseen: 11.25 hintades: 4");
    EXPECT_EQ(m_ports.statuses.join(u'\n').toStdString(),
              "Myyntitilaus 12 (1 / 1)\nOstotilaus 34 (1 / 1)");
    EXPECT_EQ(m_ports.messages.join(u'\n').toStdString(),
              "Myyntitilaukset konvertoitu.\nOstotilaukset konvertoitu.");
}

}  // namespace
