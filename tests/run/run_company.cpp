#include "tests/run/run_company.h"

#include <algorithm>

namespace test {

vatchange::ChangeDefinition addSharedKeys(RunCompany& company) {
    company.exec(QStringLiteral("insert into TUOTE (NUMERO, LVV) values ('A1', 3)"));
    // Huom tells the rows apart; HintaAlv0 is 1 in all
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
    // another product, told apart by letter case alone
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

void expectSharedKeysChanged(RunCompany& company,
                             const std::map<QString, QList<QByteArray>>& before) {
    struct Row {
        const char* name;
        double price;  // x 1.0120967741935485, to the cent
        int rows = 1;
    };
    // 10.120967..., 80.967741..., 10.242419..., 5.060483..., 30.362903..., 40.483870...
    for (const Row& row :
         {Row{"fixed", 10.12}, Row{"next", 80.97}, Row{"period", 10.24}, Row{"twin", 5.06, 2},
          Row{"pieces", 10.12}, Row{"small", 30.36}, Row{"smaller", 40.48}}) {
        EXPECT_EQ(company.number(QStringLiteral("select count(*) from ASALE where Huom='%1' and "
                                                "Hinta=%2 and HintaAlv0=%2/1.255 and "
                                                "abs(OstoHinta-0.15)<0.0001")
                                     .arg(QLatin1String(row.name))
                                     .arg(row.price)),
                  row.rows)
            << row.name;
    }
    // 10.019758..., 10.141210..., 5.060483...
    for (const Row& row : {Row{"open", 10.02}, Row{"later", 10.14}, Row{"twin", 5.06, 2}}) {
        EXPECT_EQ(company.number(QStringLiteral("select count(*) from KAMPPANJA where Tunnus='%1' "
                                                "and abs(Myyntihinta-%2)<0.00001 and Ostohinta=3")
                                     .arg(QLatin1String(row.name))
                                     .arg(row.price)),
                  row.rows)
            << row.name;
    }
    const auto now = company.everything();
    const auto kept = [&](const QString& table, const QByteArray& mark) {
        const auto isMarked = [&mark](const QByteArray& record) { return record.contains(mark); };
        const auto& old = before.at(table);
        const auto found = std::find_if(old.begin(), old.end(), isMarked);
        return found != old.end() && now.at(table).contains(*found);
    };
    EXPECT_TRUE(kept(QStringLiteral("ASALE"), "percent"));
    EXPECT_TRUE(kept(QStringLiteral("ASALE"), "type"));
    EXPECT_TRUE(kept(QStringLiteral("KAMPPANJA"), "ended"));
    EXPECT_TRUE(kept(QStringLiteral("KAMPPANJA"), "perc"));
}

}  // namespace test
