// A definition on a server's SQL ends as on the embedded engine, cell for cell. Records come from
// an embedded company beside the server: a run reads each product record once, before it changes
// it.

#include <algorithm>

#include "tests/odbc/sql_drivers.h"
#include "tests/support/company_folder.h"
#include "tests/support/recording_ports.h"
#include "tools/zavdb/demo/demo_company.h"
#include "vatchange/run/change_run.h"

namespace {

using test::sourceOf;

/// SQL on a server, records of an embedded company.
class ServerCompany : public test::OdbcDatabase {
  public:
    ServerCompany(const engines::shops::OdbcSettings& settings, data::Database& records)
        : OdbcDatabase(settings), m_records(records) {}
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        return m_records.openTable(tableName);
    }

  private:
    data::Database& m_records;
};

/// Compares tables row by row; shows the first row that differs.
void expectSame(const QStringList& expected, const QStringList& got, const QString& table) {
    const auto [left, right] =
        std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
    EXPECT_TRUE(left == expected.end() && right == got.end())
        << table.toStdString() << " row " << left - expected.begin() << "\n  "
        << expected.value(left - expected.begin()).toStdString() << "\n  "
        << got.value(right - got.begin()).toStdString();
}

// Without the columns that hold a time of day, since the server has its own clock, and without the
// bytes that hold the embedded engine's bits, which are separate columns on a server.
QStringList sortedRows(data::Database& database, const QString& table,
                       const QString& condition = QStringLiteral("1 = 1")) {
    const data::TableSource source = sourceOf(table);
    QStringList names;
    for (const data::TFieldCacheItem& field : test::sqlFields(source)) {
        const bool holdsBits =
            std::any_of(source.fields.begin(), source.fields.end(), [&](const auto& bit) {
                return bit.storage == data::Storage::Bit && field.storage != data::Storage::Bit &&
                       bit.offset >= field.offset && bit.offset < field.offset + field.storedLength;
            });
        if (field.kind() != data::Kind::Time && field.kind() != data::Kind::Timestamp && !holdsBits)
            names += field.name;
    }
    QStringList found =
        test::rows(database, QStringLiteral("select %1 from %2 where %3")
                                 .arg(names.join(QStringLiteral(", ")), table, condition));
    std::sort(found.begin(), found.end());
    return found;
}

vatchange::ChangeDefinition everything() {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 1;
    definition.targetClass = 5;
    for (size_t i = 0; i < definition.levels.size(); ++i)
        definition.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], i % 2 == 0};
    definition.purchaseCoefficient = 1.01;
    definition.lastPurchaseCoefficient = 1.03;
    definition.productGroup = {true, 1, 900000, QStringLiteral("3,x")};
    definition.customerGroups = {1, 2};
    definition.productLog = definition.customerPriceLists = definition.webShopCustomerPriceLists =
        definition.campaigns = definition.quantityDiscounts = definition.recurringInvoicing =
            definition.checkProductCodes = true;
    definition.roundingStep = vatchange::RoundingStep::One;
    definition.roundingRule = vatchange::RoundingRule::Normal;
    return definition;
}

const QString kShared = QStringLiteral("tuote = 'JAETTU'");

// Price rows that share their update's key, with amounts that a driver may round.
const char* const kSharedRows[] = {
    "TUOTE (NUMERO, RYHMA, LVV) values ('JAETTU', 1, 1)",
    "ASALE (AsiakasNumero, Tuote, AsikasTyyppi, Tyyppi, Maara, Hinta, OstoHinta, Prosentteina) "
    "values (1, 'JAETTU', 1, 1, 0.7, 1.0/3, 0.1, 0), (1, 'JAETTU', 1, 1, 0.7, 2.0/3, 1234.567, 0), "
    "(1, 'JAETTU', 1, 1, 0.7, 15, 0, 1), (1, 'JAETTU', 1, 1, 0.7, 1.0/3, 0.2, 0)",
    "KAMPPANJA (Tuote, RiviNro, Myyntihinta, Ostohinta, Loppu) values "
    "('JAETTU', 1, 0.1, 1.0/3, ''), ('JAETTU', 1, 1234.567, 2.0/3, '2024-09-01'), "
    "('JAETTU', 1, 0.1, 3, '2024-08-31')"};

class DefinitionRun : public ::testing::TestWithParam<const char*> {};

TEST_P(DefinitionRun, EndsAsOnTheEmbeddedEngine) {
    const QString name = QLatin1String(GetParam());
    if (!test::SqlEngine::isAvailable(name))
        GTEST_SKIP() << "the SQL servers are not running";
    const QStringList tables{"TUOTE",     "TRYHMA",        "MYYMALAHINNAT", "HR",      "ASALE",
                             "KAMPPANJA", "VAKIOLASKUTUS", "MAARAALE",      "ASIAKAS", "ASRYHMA",
                             "ALVKANTA",  "INI",           "X$File"};
    test::CompanyFolder folder;
    QTemporaryDir beside;
    engines::createEmbedded(folder.path(), data::allTableSources());
    const auto embedded = engines::openEmbedded(QStringLiteral("KOE"), folder.path());
    tools::demo::fill(*embedded, {300, 7}, [](const QString&, qint64) {});
    for (const char* rows : kSharedRows)
        test::exec(*embedded, QStringLiteral("insert into ") + QLatin1String(rows));
    engines::backupEmbedded(folder.path(), beside.filePath(engines::kEmbeddedFileName), {});
    const auto records = engines::openEmbedded(QStringLiteral("SIVU"), beside.path());
    const test::SqlEngine engine(name, tables);
    ServerCompany server(engine.settings(), *records);
    for (const QString& table : tables) {
        test::copyTable(*embedded, server, sourceOf(table));
        expectSame(sortedRows(*embedded, table), sortedRows(server, table), table);
    }

    test::RecordingPorts expected;
    test::RecordingPorts got;
    expected.skipEarlyDate = got.skipEarlyDate = true;
    const vatchange::RunResult first = vatchange::runChange(*embedded, everything(), expected);
    const vatchange::RunResult second = vatchange::runChange(server, everything(), got);
    EXPECT_TRUE(first.clean()) << expected.lines.join(u'\n').right(2000).toStdString();
    EXPECT_TRUE(second.clean()) << got.lines.join(u'\n').right(2000).toStdString();
    EXPECT_GT(first.products, 100);
    EXPECT_EQ(first.products, second.products);
    EXPECT_EQ(got.lines.filter(QStringLiteral("JAETTU")).size(), 3 + 2 + 1) << "prices, product";
    for (const QString& table : tables) {
        const bool shares = table == QLatin1String("ASALE") || table == QLatin1String("KAMPPANJA");
        const QString own = shares ? QStringLiteral("not ") + kShared : QStringLiteral("1 = 1");
        expectSame(sortedRows(*embedded, table, own), sortedRows(server, table, own), table);
        if (shares)
            expectSame(sortedRows(*embedded, table, kShared), sortedRows(*records, table, kShared),
                       table);
    }
    const auto marks = QStringLiteral("WEBKLIITOS");
    expectSame(sortedRows(*embedded, marks), sortedRows(*records, marks), marks);
    // only the embedded company has a journal to be verified
    EXPECT_EQ(expected.lines.removeIf([](const QString& line) {
        return line.startsWith(QLatin1String("Tarkastus: "));
    }),
              1);
    // statements without an order leave that to the engine
    expected.lines.sort();
    got.lines.sort();
    EXPECT_EQ(expected.lines, got.lines);
}

INSTANTIATE_TEST_SUITE_P(Servers, DefinitionRun, ::testing::Values("virtuoso", "mariadb"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
