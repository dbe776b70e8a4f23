#include "vatchange/run/row_counts.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "tests/faults/full_company.h"

namespace {

// What the question before a run tells is what the run then does.
TEST(RowCounts, AreTheRowsThatTheRunChanges) {
    const QTemporaryDir folder;
    test::makeFullCompany(folder.path(), {.products = 11, .orders = 5});
    test::useCompany(folder.path());
    const auto database = test::openCompany(folder.path());
    const auto count = [&database](const char* sql) {
        const auto statement = database->prepare(QString::fromUtf8(sql));
        return statement->execute();
    };
    // rows that are left out for each reason of the steps
    count("update MT set Veloitustapa = 14 where Numero = 2");
    count("update MTRIVI set Toimitettava = 0 where TilausNro = 3 and RiviNro = 1");
    count("update WINOT set Tila = 5 where TilausNro = 1");
    count("update TUOTE set LVV = 6 where NUMERO < '3'");
    vatchange::ChangeDefinition definition = test::fullDefinition();
    definition.checkProductCodes = false;

    QStringList expected;
    for (const vatchange::RowCount& step : vatchange::rowCounts(definition)) {
        const qint64 rows = vatchange::countRows(*database, step);
        EXPECT_GT(rows, 0) << step.what.toStdString();
        expected += QStringLiteral("%1 %2").arg(step.what).arg(rows);
    }
    test::LoggingPorts ports;
    const auto result = vatchange::runChange(*database, definition, ports);
    QStringList changed;
    for (const vatchange::ChangedRows& kind : result.changed)
        changed += QStringLiteral("%1 %2").arg(kind.what).arg(kind.rows);
    for (const QString& step : expected)
        EXPECT_TRUE(changed.contains(step))
            << step.toStdString() << " in " << changed.join(u';').toStdString();
    EXPECT_EQ(expected.size(), 9);
}

}  // namespace
