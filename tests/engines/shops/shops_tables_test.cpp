#include "engines/shops/shops_tables.h"

#include <gtest/gtest.h>

#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "tests/support/checks.h"
#include "tests/support/fake_client/fake_company.h"

using namespace data;
using engines::shops::ShopsDatabaseSettings;
using engines::shops::ShopsTables;
using test::FakeDatabases;
using test::str;
using test::thrownBy;

namespace {

class ShopsTablesTest : public ::testing::Test {
  protected:
    ShopsTablesTest() {
        engines::createEmbedded(store(), allTableSources());
        run("insert into ALVKANTA (luokka, Selite, Prosentti) values (3, 'Yleinen', 24)");
        run("insert into ALVKANTA (luokka, Prosentti) values (5, 25.5)");
    }

    QString store() const { return m_store.path(); }
    void run(const char* sql) {
        engines::openEmbedded(str("varasto"), store())->prepare(str(sql))->execute();
    }
    /// Registers a database with the fake client.
    ShopsDatabaseSettings database(const QString& name, const QString& quirks = {}) {
        m_databases.add(name, store(), quirks);
        return settings(name);
    }
    ShopsDatabaseSettings settings(const QString& name) const {
        ShopsDatabaseSettings made;
        made.name = name;
        made.folder = m_folder.path();
        made.clientLibrary = FakeDatabases::library();
        return made;
    }

    QTemporaryDir m_store;
    QTemporaryDir m_folder;
    FakeDatabases m_databases;
};

TEST_F(ShopsTablesTest, OpensTablesByDatabaseName) {
    ShopsTables records(database(str("Åkerin & pojat?=50%#1")));
    EXPECT_TRUE(records.tableNames().contains(str("MTRIVI")));
    const auto rates = records.openTable(str("alvkanta"));
    EXPECT_EQ(rates->recordCount(), 2);
    const auto found = rates->seek(0, SeekOp::Equal, {3}, 5);
    ASSERT_EQ(found.size(), 1);
    const RecordLayout& layout = rates->layout();
    EXPECT_EQ(readText(layout.field(layout.indexOf(str("Selite"))),
                       reinterpret_cast<const uchar*>(found[0].bytes.constData())),
              str("Yleinen"));
    EXPECT_GT(records.openTable(str("X$Field"))->recordCount(), 800);
    EXPECT_EQ(records.openTable(str("MT"))->keys().size(), 2);
}

TEST_F(ShopsTablesTest, OpensFilesOfTheFolderWithoutAName) {
    run("update X$File set Xf$Loc = 'ALV.MKD' where Xf$Name = 'ALVKANTA'");
    m_databases.add(m_folder.path(), store());
    const ShopsDatabaseSettings byFile = settings(str("nimetön"));
    {
        ShopsTables records(byFile);
        const DataError error = thrownBy([&] { records.openTable(str("ALVKANTA")); });
        EXPECT_EQ(error.kind(), ErrorKind::NoConnection);
        EXPECT_EQ(error.nativeCode(), 172);
    }
    QFile catalogue(m_folder.filePath(str("File.ddf")));
    ASSERT_TRUE(catalogue.open(QIODevice::WriteOnly));
    ShopsTables records(byFile);
    EXPECT_EQ(records.openTable(str("ALVKANTA"))->recordCount(), 2);
}

TEST_F(ShopsTablesTest, ErrorsSayWhatToDo) {
    const std::tuple<const char*, ErrorKind, QStringList> cases[] = {
        {"owner=zav", ErrorKind::NoConnection, {"omistajanimi ei kelpaa", "OwnerName", "X$File"}},
        {"short", ErrorKind::Damaged, {"ALVKANTA", "ends at byte"}},
        {"key", ErrorKind::Damaged, {"key 0, field luokka: byte 0, length 4; in the file 1"}},
        {"cut", ErrorKind::Damaged, {"is cut off"}}};
    for (const auto& [peculiarity, kind, texts] : cases) {
        ShopsTables records(database(str(peculiarity), str(peculiarity)));
        const DataError error = thrownBy(
            [&records] { records.openTable(str("ALVKANTA"))->fromEnd(0, Direction::Forward, 2); });
        EXPECT_EQ(error.kind(), kind) << error.what();
        for (const QString& text : texts)
            EXPECT_TRUE((error.finnish() + error.detail()).contains(text)) << error.what();
    }
    ShopsDatabaseSettings owned = settings(str("owner=zav"));
    owned.ownerName = str("zav");
    EXPECT_EQ(ShopsTables(owned).openTable(str("ALVKANTA"))->recordCount(), 2);
    EXPECT_EQ(thrownBy([&] { ShopsTables(owned).openTable(str("EIOLE")); }).kind(),
              ErrorKind::NoSuchTable);

    // a missing library, and an unrelated one
    owned.clientLibrary = m_folder.filePath(str("eiole.so"));
    const DataError library = thrownBy([&] { ShopsTables records(owned); });
    EXPECT_EQ(library.kind(), ErrorKind::NoConnection);
    EXPECT_EQ(library.table(), str("owner=zav"));
    for (const char* text : {"eiole.so", "asetuksessa Engine/ClientLibrary"})
        EXPECT_TRUE(library.finnish().contains(str(text))) << library.what();
    owned.clientLibrary = str("libsqlite3.so.0");
    EXPECT_EQ(thrownBy([&] { ShopsTables records(owned); }).kind(), ErrorKind::NoConnection);
}

TEST_F(ShopsTablesTest, AVisitEndsWhenItsVisitorReturnsFalse) {
    run("insert into ALVKANTA (luokka) values (4)");
    ShopsTables records(database(str("koe")));
    const auto rates = records.openTable(str("ALVKANTA"));
    std::vector<RecordId> inOrder;
    for (const StoredRecord& record : rates->fromEnd(0, Direction::Forward, 5))
        inOrder.push_back(record.id);
    ASSERT_EQ(inOrder.size(), 3);
    std::vector<RecordId> seen;
    const auto last =
        rates->visit(0, std::nullopt, Direction::Forward, 5, [&](RecordId id, const QByteArray&) {
            seen.push_back(id);
            return seen.size() < 2;
        });
    EXPECT_EQ(seen, std::vector<RecordId>(inOrder.begin(), inOrder.begin() + 2));
    ASSERT_TRUE(last);
    EXPECT_EQ(last->id, inOrder[1]);
    seen.clear();
    rates->visitIds(0, std::nullopt, 5, [&](RecordId id) { seen.push_back(id); });
    EXPECT_EQ(seen, inOrder);
}

TEST_F(ShopsTablesTest, StorageOrderContinuesAfterOtherCalls) {
    for (int i = 10; i < 30; ++i)
        run(qPrintable(str("insert into ALVKANTA (luokka) values (%1)").arg(40 - i)));
    ShopsTables records(database(str("koe")));
    const auto rates = records.openTable(str("ALVKANTA"));
    std::vector<RecordId> seen;
    const auto note = [&](RecordId id, const QByteArray&) {
        seen.push_back(id);
        return seen.size() % 3 != 0;
    };
    std::optional<RecordId> at;
    while ((at = rates->visitStored(at, 5, note)))
        rates->fromEnd(0, Direction::Backward, 2);
    EXPECT_EQ(seen.size(), 22);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    // Continued by another file object.
    const auto again = records.openTable(str("ALVKANTA"));
    EXPECT_EQ(again->visitStored(seen[9], 1, [](RecordId, const QByteArray&) { return true; }),
              seen[10]);
    rates->remove(seen[3]);
    EXPECT_EQ(thrownBy([&] { again->visitStored(seen[3], 1, note); }).kind(), ErrorKind::Gone);
}

}  // namespace
