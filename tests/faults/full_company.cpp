#include "tests/faults/full_company.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <random>

#include "company/logs.h"
#include "data/engine/run_journal.h"

namespace test {

namespace {

const QString kName = QStringLiteral("Koetusyritys");
constexpr double kCoefficient = 1.0120967741935485;

/// Runs statements in which %1 stands for a number and %2 for the product of that number.
void add(data::Database& database, int number, std::initializer_list<const char*> statements) {
    const QString product = QStringLiteral("T%1").arg(number, 5, 10, QLatin1Char('0'));
    for (const char* sql : statements)
        exec(database, QString::fromUtf8(sql)
                           .replace(QLatin1String("%1"), QString::number(number))
                           .replace(QLatin1String("%2"), product));
}

void addProduct(data::Database& database, int number) {
    add(database, number,
        {"insert into TUOTE (NUMERO, NIMI, RYHMA, LVV, ALV2, OSTOVERO, HINTA, HINTA3, KESKIHINTA, "
         "ANNOSHINTA, HRKPL, Verkkokauppa) values ('%2', 'Tuote %1', 1 + %1 % 3, 3, "
         "3 * (%1 % 2 = 0), 3, 1.24 * (1 + %1 % 50), 9.9, 4.2, 1.1, %1 % 2, %1 % 3 = 0)"});
    if (number % 4 == 1) {
        add(database, number,
            {"insert into HR (Tyyppi, Tuote, Maara, H1) values (1, '%2', 7, 3.5)",
             "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta1Alv0) "
             "values (1, '%2', 12.4, 10)",
             "insert into ASALE (AsiakasNumero, Tuote, Hinta, HintaAlv0, Tyyppi, Maara, "
             "AsikasTyyppi, OstoHinta) values (1, '%2', 12.4, 10, 1, 1, 0, 5)",
             "insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta, Ostohinta) "
             "values ('%2', 1, 9.5, 4)",
             "insert into VAKIOLASKUTUS (Id, Asiakas, Tuote, ahinta, Yhteensa, ostohinta) "
             "values (%1, 1, '%2', 20, 40, 10)"});
    }
    if (number % 5 == 2) {
        add(database, number,
            {"insert into MAARAALE (Numero, Nimi, Arvo, Ostohinta) values (%1, 'Kimppa', 3, 2)",
             "update TUOTE set maaraale = %1 where NUMERO = '%2'"});
    }
}

// Every third sales row has no margin after the change: 4 x 10.12 against 4 x 10.12.
void addOrder(data::Database& database, int order) {
    add(database, order,
        {"insert into MT (Numero, Toimitustila) values (%1, 1)",
         "insert into WINOT (TilausNro, Tila) values (%1, 1)"});
    for (const char* row : {"1, 5", "2, 5", "3, 10"})  // number, purchase price
        exec(database, QStringLiteral("insert into MTRIVI (TilausNro, RiviNro, Ostohinta, "
                                      "Verokanta, OstoVero, Maara, Toimitettava, Ahinta, "
                                      "AhintaAlv0, Netto) values (%1, %2, 3, 3, 4, 4, 10, 8, 40)")
                           .arg(order)
                           .arg(QLatin1String(row)));
    for (int row = 1; row <= 3; ++row)
        exec(database,
             QStringLiteral("insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta, Maara, "
                            "OstoHinta, OstoHintaAlv0, Summa) values (%1, %2, 3, 1, 2, 10, 8, 20)")
                 .arg(order)
                 .arg(row));
}

}  // namespace

void makeFullCompany(const QString& folder, const FullCompanySize& size) {
    createCompany(folder, {{3, 24}, {6, 25.5}});
    const auto database = openCompany(folder);
    database->inTransaction([&] {
        for (int group = 1; group <= 3; ++group)
            add(*database, group,
                {"insert into TRYHMA (Nro, Nimi, VERO, OSTOVERO) values (%1, 'Ryhmä', 3, 3)"});
        for (int number = 1; number <= size.products; ++number)
            addProduct(*database, number);
        for (int order = 1; order <= size.orders; ++order)
            addOrder(*database, order);
        // One that the product code check takes off the web shop.
        exec(*database, QStringLiteral("insert into TUOTE (NUMERO, LVV, Verkkokauppa) "
                                       "values ('A/1', 6, 1)"));
    });
}

void copyCompany(const QString& from, const QString& to) {
    ASSERT_TRUE(QDir().mkpath(to));
    const QString file = QLatin1Char('/') + engines::kEmbeddedFileName;
    ASSERT_FALSE(QFile::exists(from + file + QStringLiteral("-wal")));
    ASSERT_TRUE(QFile::copy(from + file, to + file));
}

void useCompany(const QString& folder) {
    company::storeAlias({kName, folder, {}, {}});
    ASSERT_TRUE(company::takeIntoUse(kName));
}

std::unique_ptr<data::Database> openCompany(const QString& folder) {
    return engines::openEmbedded(kName, folder);
}

Records readCompany(const QString& folder) {
    const auto database = openCompany(folder);
    Records all;
    for (const QString& name : database->tableNames()) {
        if (name.startsWith(QLatin1String("X$")))
            continue;
        std::map<data::RecordId, QByteArray>& records = all[name];
        database->openTable(name)->visitStored(
            std::nullopt, std::numeric_limits<int>::max(),
            [&records](data::RecordId id, const QByteArray& bytes) {
                records[id] = QByteArray(bytes.constData(), bytes.size());
                return true;
            });
    }
    return all;
}

QString differingTable(const Records& left, const Records& right) {
    const auto sorted = [](const std::map<data::RecordId, QByteArray>& byId) {
        std::vector<QByteArray> records;
        for (const auto& [id, record] : byId)
            records.push_back(record);
        std::sort(records.begin(), records.end());
        return records;
    };
    for (const auto& [table, records] : left) {
        if (sorted(records) != sorted(right.at(table)))
            return table;
    }
    return {};
}

vatchange::RunResult runOrResume(data::Database& database, vatchange::RunPorts& ports) {
    const std::vector<data::JournalRun> runs = database.journal()->runs();
    if (!runs.empty() && runs.back().state == data::RunState::Done)
        return {};
    const qint64 unfinished = runs.empty() ? 0 : runs.back().number;
    return runChange(database, fullDefinition(), ports, {unfinished, 0});
}

vatchange::ChangeDefinition fullDefinition() {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 3;
    definition.targetClass = 6;
    definition.levels[0] = {kCoefficient, QStringLiteral("hinta"), false};
    definition.levels[2] = {kCoefficient, QStringLiteral("hinta3"), false};
    definition.purchaseCoefficient = kCoefficient;
    definition.salesOrderCoefficient = definition.purchaseOrderCoefficient = kCoefficient;
    definition.productLog = true;
    definition.customerPriceLists = definition.campaigns = true;
    definition.quantityDiscounts = definition.recurringInvoicing = true;
    definition.salesOrders = definition.purchaseOrders = true;
    definition.checkProductCodes = true;
    return definition;
}

std::map<QString, double> fieldByKey(data::Database& database, const QString& table,
                                     const QString& field) {
    const auto file = database.openTable(table);
    const QString key = file->layout().field(file->keys().front().segments.front().fieldIndex).name;
    std::map<QString, double> values;
    for (const QString& row :
         rows(database, QStringLiteral("select %1, %2 from %3").arg(key, field, table)))
        values[row.section(u'|', 0, 0)] = row.section(u'|', 1).toDouble();
    return values;
}

int countFrom(const char* variable, int byDefault) {
    const int given = qEnvironmentVariableIntValue(variable);
    return given > 0 ? given : byDefault;
}

unsigned seedOfTest() {
    bool given = false;
    const unsigned seed = qEnvironmentVariable("TAKSAVAIHE_SEED").toUInt(&given);
    return given ? seed : std::random_device{}();
}

}  // namespace test
