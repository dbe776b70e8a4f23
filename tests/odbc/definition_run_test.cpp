// A whole definition on a server's SQL ends as on the embedded engine, cell for cell. The products'
// locks and rereads go to the same server's table; marks for the web shop, and the records of price
// rows that share their key, to an embedded company beside it.

#include <algorithm>
#include <set>

#include "data/record/record_codec.h"
#include "tests/odbc/sql_drivers.h"
#include "tests/support/company_folder.h"
#include "tests/support/recording_ports.h"
#include "tools/zavdb/demo/demo_company.h"
#include "vatchange/run/change_run.h"

namespace {

using data::ErrorKind;
using data::RecordId;
using data::StoredRecord;

data::TableSource sourceOf(const QString& name) {
    for (data::TableSource& table : data::allTableSources()) {
        if (table.name.compare(name, Qt::CaseInsensitive) == 0)
            return table;
    }
    throw data::DataError(ErrorKind::NoSuchTable, name, QStringLiteral("no dictionary"));
}

/// The product records as a run uses them: found by number, locked, read under the lock.
class SqlProducts : public data::TableFile {
  public:
    explicit SqlProducts(data::Database& sql)
        : m_source(sourceOf(QStringLiteral("TUOTE"))),
          m_layout(m_source.name, m_source.fields),
          m_query(&sql) {
        data::KeySegment number;
        number.fieldIndex = m_layout.indexOf(QStringLiteral("NUMERO"));
        m_keys.push_back({0, true, {number}});
        m_query.sql().setText(QStringLiteral("select * from TUOTE where NUMERO = :number"));
    }
    const data::RecordLayout& layout() const override { return m_layout; }
    const std::vector<data::KeyDef>& keys() const override { return m_keys; }
    std::vector<StoredRecord> seek(int, data::SeekOp op, const data::KeyValues& values,
                                   int) override {
        EXPECT_EQ(op, data::SeekOp::Equal);
        m_numbers.push_back(values.front().toString());
        const auto found = get(static_cast<RecordId>(m_numbers.size()));
        return found ? std::vector<StoredRecord>{*found} : std::vector<StoredRecord>{};
    }
    std::optional<StoredRecord> get(RecordId id) override {
        m_query.paramByName(QStringLiteral("number"))
            .setString(m_numbers.at(static_cast<size_t>(id - 1)));
        m_query.open();
        if (m_query.eof())
            return std::nullopt;
        StoredRecord record{id, QByteArray(m_layout.recordLength(), '\0')};
        for (const QString& name : m_query.fieldNames())
            data::writeValue(m_layout.field(m_layout.indexOf(name)),
                             reinterpret_cast<uchar*>(record.bytes.data()),
                             m_query.fieldByName(name).value(), m_source.name);
        m_query.close();
        return record;
    }
    bool lock(RecordId id, std::chrono::milliseconds) override {
        EXPECT_TRUE(m_locked.insert(id).second);
        return true;
    }
    void unlock(RecordId id) override { EXPECT_EQ(m_locked.erase(id), 1U); }

    // What a run does not do.
    qint64 recordCount() override { return refuse(), 0; }
    std::vector<StoredRecord> fromEnd(int, data::Direction, int) override { return refuse(); }
    std::vector<StoredRecord> next(int, const StoredRecord&, data::Direction, int) override {
        return refuse();
    }
    int compare(int, const QByteArray&, const data::KeyValues&) const override { return 0; }
    RecordId insert(QByteArray&) override { return refuse(), 0; }
    void update(RecordId, const QByteArray&) override { refuse(); }
    void remove(RecordId) override { refuse(); }

  private:
    static std::vector<StoredRecord> refuse() {
        throw data::DataError(ErrorKind::Engine, QStringLiteral("TUOTE"),
                              QStringLiteral("a run does not do this"));
    }
    data::TableSource m_source;
    data::RecordLayout m_layout;
    std::vector<data::KeyDef> m_keys;
    data::TUniQuery m_query;
    std::vector<QString> m_numbers;
    std::set<RecordId> m_locked;
};

/// SQL on a server, records as above.
class ServerCompany : public test::OdbcDatabase {
  public:
    ServerCompany(const engines::shops::OdbcSettings& settings, data::Database& records)
        : OdbcDatabase(settings), m_records(records) {}
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        if (tableName.compare(QLatin1String("TUOTE"), Qt::CaseInsensitive) == 0)
            return std::make_unique<SqlProducts>(*this);
        return m_records.openTable(tableName);
    }

  private:
    data::Database& m_records;
};

/// Compares tables row by row; tells the first rows that differ.
void expectSame(const test::Rows& expected, const test::Rows& got, const QString& table) {
    ASSERT_EQ(expected.size(), got.size()) << table.toStdString();
    int told = 0;
    for (size_t i = 0; i < expected.size() && told < 3; ++i) {
        if (expected[i] != got[i]) {
            ++told;
            ADD_FAILURE() << table.toStdString() << "\n  " << expected[i] << "\n  " << got[i];
        }
    }
}

// The server's clock is not the program's: columns that hold a time of day are left out; so are the
// bytes that the embedded engine's bits stand in, which are columns of their own on a server.
test::Rows sortedRows(data::Database& database, const QString& table,
                      const QString& condition = QStringLiteral("1 = 1")) {
    const data::TableSource source = sourceOf(table);
    const auto holdsBits = [&source](const data::TFieldCacheItem& field) {
        return std::any_of(source.fields.begin(), source.fields.end(), [&](const auto& bit) {
            return bit.storage == data::Storage::Bit && field.storage != data::Storage::Bit &&
                   bit.offset >= field.offset && bit.offset < field.offset + field.storedLength;
        });
    };
    QStringList names;
    for (const data::TFieldCacheItem& field : test::sqlFields(source)) {
        const bool isTime =
            field.kind() == data::Kind::Time || field.kind() == data::Kind::Timestamp;
        if (!isTime && !holdsBits(field))
            names += field.name;
    }
    test::Rows found =
        test::rows(database, QStringLiteral("select %1 from %2 where %3")
                                 .arg(names.join(QStringLiteral(", ")), table, condition));
    std::sort(found.begin(), found.end());
    return found;
}

vatchange::ChangeDefinition everything(vatchange::RoundingStep step, vatchange::RoundingRule rule) {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 1;
    definition.targetClass = 5;
    for (size_t i = 0; i < definition.levels.size(); ++i)
        definition.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], i % 2 == 0};
    definition.purchaseCoefficient = 1.01;
    definition.lastPurchaseCoefficient = 1.03;
    definition.productGroup = {true, 1, 900000, QStringLiteral("3,x")};
    definition.customerGroups = {1, 2};
    definition.productLog = true;
    definition.customerPriceLists = true;
    definition.webShopCustomerPriceLists = true;
    definition.campaigns = true;
    definition.quantityDiscounts = true;
    definition.recurringInvoicing = true;
    definition.checkProductCodes = true;
    definition.roundingStep = step;
    definition.roundingRule = rule;
    return definition;
}

const QString kShared = QStringLiteral("tuote = 'JAETTU'");

/// Price rows that share their update's key, with amounts that a driver may hand over rounded.
void addSharedKeys(data::Database& database) {
    data::TUniQuery query(&database);
    const auto insert = [&query](const QString& into, const QString& values) {
        query.sql().setText(QStringLiteral("insert into %1 values (%2)").arg(into, values));
        query.execSql();
    };
    insert(QStringLiteral("TUOTE (NUMERO, RYHMA, LVV)"), QStringLiteral("'JAETTU', 1, 1"));
    for (const char* row : {"1.0/3, 0.1, 0", "2.0/3, 1234.567, 0", "15, 0, 1", "1.0/3, 0.2, 0"})
        insert(QStringLiteral("ASALE (AsiakasNumero, Tuote, AsikasTyyppi, Tyyppi, Maara, Hinta, "
                              "OstoHinta, Prosentteina)"),
               QStringLiteral("1, 'JAETTU', 1, 1, 0.7, ") + QLatin1String(row));
    for (const char* row :
         {"0.1, 1.0/3, ''", "1234.567, 2.0/3, '2024-09-01'", "0.1, 3, '2024-08-31'"})
        insert(QStringLiteral("KAMPPANJA (Tuote, RiviNro, Myyntihinta, Ostohinta, Loppu)"),
               QStringLiteral("'JAETTU', 1, ") + QLatin1String(row));
}

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
    {
        const auto company = engines::openEmbedded(QStringLiteral("KOE"), folder.path());
        tools::demo::fill(*company, {300, 7}, [](const QString&, qint64) {});
        addSharedKeys(*company);
    }
    engines::backupEmbedded(folder.path(), beside.filePath(engines::kEmbeddedFileName),
                            [](int, int) { return true; });
    const auto embedded = engines::openEmbedded(QStringLiteral("KOE"), folder.path());
    const auto records = engines::openEmbedded(QStringLiteral("SIVU"), beside.path());
    const test::SqlEngine engine(name, tables);
    ServerCompany server(engine.settings(), *records);
    for (const QString& table : tables) {
        test::copyTable(*embedded, server, sourceOf(table));
        expectSame(sortedRows(*embedded, table), sortedRows(server, table), table);
    }

    const vatchange::ChangeDefinition definition =
        everything(vatchange::RoundingStep::One, vatchange::RoundingRule::Normal);
    test::RecordingPorts expected;
    test::RecordingPorts got;
    expected.skipEarlyDate = got.skipEarlyDate = true;
    const vatchange::RunResult first = vatchange::runChange(*embedded, definition, expected);
    const vatchange::RunResult second = vatchange::runChange(server, definition, got);
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
    expectSame(sortedRows(*embedded, QStringLiteral("WEBKLIITOS")),
               sortedRows(*records, QStringLiteral("WEBKLIITOS")), QStringLiteral("WEBKLIITOS"));
    // the engines' own order of rows is free where a statement gives none
    expected.lines.sort();
    got.lines.sort();
    for (qsizetype i = 0; i < std::min(expected.lines.size(), got.lines.size()); ++i)
        ASSERT_EQ(expected.lines[i].toStdString(), got.lines[i].toStdString());
    EXPECT_EQ(expected.lines.size(), got.lines.size());
}

INSTANTIATE_TEST_SUITE_P(Servers, DefinitionRun, ::testing::Values("virtuoso", "mariadb"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
