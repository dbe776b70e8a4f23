#include "tests/run/run_company.h"

namespace test {

vatchange::ChangeDefinition addSharedKeys(RunCompany& company) {
    company.exec(QStringLiteral("insert into TUOTE (NUMERO, LVV) values ('A1', 3)"));
    // Huom identifies the rows; HintaAlv0 is 1 in all
    for (const char* row :
         {"'fixed', 10, 0, 1, '', 0", "'percent', 15, 1, 1, '', 0", "'next', 80, 0, 1, '', 0",
          "'period', 10.12, 0, 1, '2024-10-01', 0",  // what the first one becomes
          "'twin', 5, 0, 1, '', 0", "'twin', 5, 0, 1, '', 0", "'type', 10, 0, 2, '', 0",
          "'pieces', 10, 0, 1, '', 12"}) {
        company.exec(QStringLiteral("insert into ASALE (AsiakasNumero, Tuote, HintaAlv0, "
                                    "OstoHinta, Huom, Hinta, Prosentteina, Tyyppi, Alkaa, Maara) "
                                    "values (1, 'A1', 1, 0.1, %1)")
                         .arg(QLatin1String(row)));
    }
    // another product, different only by case
    company.exec(QStringLiteral("insert into TUOTE (NUMERO, LVV) values ('a1', 3)"));
    for (const char* row : {"'small', 30", "'smaller', 40"}) {
        company.exec(QStringLiteral("insert into ASALE (AsiakasNumero, Tuote, OstoHinta, Tyyppi, "
                                    "Huom, Hinta) values (1, 'a1', 0.1, 1, %1)")
                         .arg(QLatin1String(row)));
    }
    for (const char* row :
         {"'open', 9.9, 0, ''", "'later', 10.02, 0, '2024-09-01'", "'ended', 9.9, 0, '2024-08-31'",
          "'perc', 20, 1, ''", "'twin', 5, 0, ''", "'twin', 5, 0, ''"}) {
        company.exec(QStringLiteral("insert into KAMPPANJA (Tuote, RiviNro, Ostohinta, Tunnus, "
                                    "Myyntihinta, Prosentti, Loppu) values ('A1', 1, 2, %1)")
                         .arg(QLatin1String(row)));
    }
    vatchange::ChangeDefinition definition = plainDefinition();
    definition.products = false;
    definition.customerPriceLists = definition.campaigns = true;
    definition.purchaseCoefficient = 1.5;
    return definition;
}

}  // namespace test
