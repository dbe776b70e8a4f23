#include "vatchange/run/run_summary.h"

#include <gtest/gtest.h>

#include "tests/run/run_company.h"

namespace {

using test::RunCompany;
using vatchange::RunSummary;

TEST(RunSummary, CountsWhatEachStepChanged) {
    RunCompany company;
    company.execAll(
        {"insert into TUOTE (NUMERO, LVV, HINTA, HRKPL, Verkkokauppa) values ('A1', 3, 12.4, 1, 1)",
         "insert into TUOTE (NUMERO, LVV, HINTA) values ('A2', 3, 12.4)",
         "insert into TUOTE (NUMERO, LVV, HINTA) values ('B1', 2, 12.4)",
         "insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (1, 3, 2, 3)",
         "insert into MYYMALAHINNAT (Myymala, Tuote) values (1, 'A1')",
         "insert into MYYMALAHINNAT (Myymala, Tuote) values (2, 'A1')",
         "insert into KAMPPANJA (Tuote, RivinRo, MyyntiHinta) values ('A2', 1, 10)",
         "insert into WINOT (TilausNro, Tila) values (7, 1)",
         "insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta) values (7, 1, 3, 2)",
         "insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta) values (7, 2, 2, 2)"});
    vatchange::ChangeDefinition definition = test::plainDefinition();
    definition.campaigns = definition.salesOrders = definition.purchaseOrders = true;
    const RunSummary summary = runWithSummary(company.database(), definition, company.ports);
    EXPECT_TRUE(summary.result.clean());
    EXPECT_EQ(summary.definition, definition);
    EXPECT_EQ(summary.definitionName, company.ports.definition);
    QStringList counts;
    for (const vatchange::ChangedRows& changed : summary.result.changed)
        counts += QStringLiteral("%1 %2").arg(changed.what).arg(changed.rows);
    EXPECT_EQ(counts, (QStringList{"Kampanjarivit 1", "Tuoteryhmien alv-kentät 2",
                                   "Myymälähintojen rivit 2", "Tuotteet 2", "Hyllynreunaetiketit 1",
                                   "Verkkokaupan muutosmerkinnät 1", "Myyntitilausten rivit 0",
                                   "Ostotilausten rivit 1"}));
}

}  // namespace
