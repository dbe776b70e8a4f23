#include "tests/faults/full_company.h"

#include <QDir>
#include <QFile>
#include <random>

#include "company/logs.h"
#include "data/record/record_codec.h"
#include "tests/support/test_company.h"

namespace test {

namespace {

const QString kName = QStringLiteral("Koetusyritys");
constexpr double kCoefficient = 1.0120967741935485;

void addProduct(data::Database& database, int number) {
    const QString id = QStringLiteral("T%1").arg(number, 5, 10, QLatin1Char('0'));
    const auto add = [&](const char* sql) { exec(database, QString::fromUtf8(sql).arg(id)); };
    exec(database, QStringLiteral("insert into TUOTE (NUMERO, NIMI, RYHMA, LVV, ALV2, OSTOVERO, "
                                  "HINTA, HINTA3, KESKIHINTA, ANNOSHINTA, HRKPL, Verkkokauppa) "
                                  "values ('%1', 'Tuote %2', %3, 3, %4, 3, %5, 9.9, 4.2, 1.1, %6, "
                                  "%7)")
                       .arg(id)
                       .arg(number)
                       .arg(1 + number % 3)
                       .arg(number % 2 == 0 ? 3 : 0)
                       .arg(1.24 * (1 + number % 50))
                       .arg(number % 2)
                       .arg(number % 3 == 0 ? 1 : 0));
    if (number % 4 == 1) {
        add("insert into HR (Tyyppi, Tuote, Maara, H1) values (1, '%1', 7, 3.5)");
        add("insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta1Alv0) "
            "values (1, '%1', 12.4, 10)");
        add("insert into ASALE (AsiakasNumero, Tuote, Hinta, HintaAlv0, Tyyppi, Maara, "
            "AsikasTyyppi, OstoHinta) values (1, '%1', 12.4, 10, 1, 1, 0, 5)");
        add("insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta, Ostohinta) "
            "values ('%1', 1, 9.5, 4)");
        exec(database, QStringLiteral("insert into VAKIOLASKUTUS (Id, Asiakas, Tuote, ahinta, "
                                      "Yhteensa, ostohinta) values (%1, 1, '%2', 20, 40, 10)")
                           .arg(number)
                           .arg(id));
    }
    if (number % 5 == 2) {
        exec(database, QStringLiteral("insert into MAARAALE (Numero, Nimi, Arvo, Ostohinta) "
                                      "values (%1, 'Kimppa', 3, 2)")
                           .arg(number));
        exec(database, QStringLiteral("update TUOTE set maaraale = %1 where NUMERO = '%2'")
                           .arg(number)
                           .arg(id));
    }
}

// Every third sales row has no margin after the change: 4 x 10.12 against 4 x 10.12.
void addOrder(data::Database& database, int order) {
    exec(database,
         QStringLiteral("insert into MT (Numero, Toimitustila) values (%1, 1)").arg(order));
    exec(database, QStringLiteral("insert into WINOT (TilausNro, Tila) values (%1, 1)").arg(order));
    for (int row = 1; row <= 3; ++row) {
        exec(database,
             QStringLiteral("insert into MTRIVI (TilausNro, RiviNro, Verokanta, OstoVero, Maara, "
                            "Toimitettava, Ahinta, AhintaAlv0, Ostohinta, Netto) "
                            "values (%1, %2, 3, 3, 4, 4, 10, 8, %3, 40)")
                 .arg(order)
                 .arg(row)
                 .arg(row == 3 ? 10 : 5));
        exec(database,
             QStringLiteral("insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta, Maara, "
                            "OstoHinta, OstoHintaAlv0, Summa) values (%1, %2, 3, 1, 2, 10, 8, 20)")
                 .arg(order)
                 .arg(row));
    }
}

}  // namespace

void makeFullCompany(const QString& folder, const FullCompanySize& size) {
    createCompany(folder, {{3, 24}, {6, 25.5}});
    const auto database = openCompany(folder);
    database->inTransaction([&] {
        for (int group = 1; group <= 3; ++group)
            exec(*database, QStringLiteral("insert into TRYHMA (Nro, Nimi, VERO, OSTOVERO) "
                                           "values (%1, 'Ryhmä', 3, 3)")
                                .arg(group));
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
    company::Alias alias;
    alias.name = kName;
    alias.physicalName = folder;
    company::storeAlias(alias);
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

LoggingPorts::LoggingPorts() {
    program = QStringLiteral("taksavaihe");
}

void LoggingPorts::NaytaViesti(const QString& text) {
    RecordingPorts::NaytaViesti(text);
    company::WriteAlvMuutosLog(text);
}

void LoggingPorts::log(const QString& line) {
    RecordingPorts::log(line);
    company::WriteAlvMuutosLog(line);
}

ChangeMorning::ChangeMorning() : m_clock(changeMorning) {}

std::map<QString, double> fieldByKey(data::Database& database, const QString& table,
                                     const QString& field) {
    const auto file = database.openTable(table);
    const data::RecordLayout& layout = file->layout();
    const data::TFieldCacheItem& key =
        layout.field(file->keys().front().segments.front().fieldIndex);
    const data::TFieldCacheItem& wanted = layout.field(layout.indexOf(field));
    std::map<QString, double> values;
    file->visitStored(std::nullopt, std::numeric_limits<int>::max(),
                      [&](data::RecordId, const QByteArray& record) {
                          const auto* bytes = reinterpret_cast<const uchar*>(record.constData());
                          values[data::readValue(key, bytes).toString()] =
                              data::readValue(wanted, bytes).toDouble();
                          return true;
                      });
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
