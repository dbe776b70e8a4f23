#include <QElapsedTimer>
#include <QLocale>

#include "data/record/display_format.h"
#include "tests/data/watched_engine.h"

namespace {

using namespace data;
using test::errorOf;
using test::KoeTable;

DataError diskError() {
    return DataError(ErrorKind::Io, "KOE", "levy");
}

/// Every engine must behave the same.
template <typename T>
class TableOnEngine : public ::testing::Test {
  protected:
    void fill(KoeTable& table) {
        for (int group = 1; group <= 3; ++group)
            for (int i = 0; i < 5; ++i)
                table.add(group * 10 + i, group, QString("tuote %1").arg(i), i);
    }
    T m_engine;
};
using Engines = ::testing::Types<test::EmbeddedTestEngine, test::ShopsTestEngine>;
TYPED_TEST_SUITE(TableOnEngine, Engines);

class TableTest : public TableOnEngine<test::WatchedTestEngine> {
  protected:
    int readsOf(const std::function<void()>& call) {
        const int before = m_engine.calls.reads;
        call();
        return m_engine.calls.reads - before;
    }
};

TEST_F(TableTest, WalksReadAhead) {
    KoeTable table(m_engine.database(), "2");
    fill(table);
    // A group of five rows: one call reads all of them and the end.
    EXPECT_EQ(readsOf([&] {
                  table.setRange({2}, {2});
                  EXPECT_EQ(table.nro(), 20);
                  for (int nro = 21; nro <= 24; ++nro) {
                      table.next();
                      EXPECT_EQ(table.nro(), nro);
                  }
                  table.next();
                  EXPECT_TRUE(table.eof());
              }),
              1);
    // Rows posted during the walk, with their key unchanged, cost no further call.
    EXPECT_EQ(readsOf([&] {
                  for (table.first(); !table.eof(); table.next()) {
                      table.edit();
                      table["Nimi"].setString("uusi");
                      table.post();
                  }
              }),
              1);
    EXPECT_EQ(readsOf([&] { table.findKey({2, 3.0}); }), 1);
    table.cancelRange();
    table.setIndexName("0");
    // 15 records: 1, then 14 of 16.
    EXPECT_EQ(readsOf([&] { EXPECT_EQ(table.walk().size(), 15); }), 2);
}

TYPED_TEST(TableOnEngine, SearchTextsMayBeLongerThanTheField) {
    KoeTable table(this->m_engine.database(), "1");
    table.add(1, 1, "ABCDEFGHIJKL");  // all twelve characters
    table.add(2, 1, "åland");
    table.add(3, 1, "Äiti");
    EXPECT_FALSE(table.findKey({"ABCDEFGHIJKLM"}));
    EXPECT_TRUE(table.findKey({"ÅLAND"}));
    table.setRange({"abcdefghijkl"}, {"abcdefghijklú"});
    EXPECT_EQ(table.walk(), (QList<int>{1}));
    table.setRange({"ä"}, {"äú"});
    EXPECT_EQ(table.walk(), (QList<int>{3}));
    EXPECT_EQ(errorOf([&] { table.findKey({1, 2}); }), ErrorKind::BadValue);
    table.setIndexName("0");
    EXPECT_EQ(errorOf([&] { table.setRange({"x"}, {9}); }), ErrorKind::BadValue);
    EXPECT_FALSE(table.hasRange());
    EXPECT_EQ(errorOf([&] { table.setIndexName("7"); }), ErrorKind::NoSuchField);
    EXPECT_EQ(table.indexName(), "0");
}

TEST_F(TableTest, FailuresLeaveRecordAndStateAsTheyWere) {
    KoeTable table(m_engine.database());
    fill(table);
    table.findKey({21});
    const auto failOn = [this](const char* what) {
        m_engine.calls.before = [what](const char* call) {
            if (std::strcmp(call, what) == 0)
                throw diskError();
        };
    };
    const std::vector<std::pair<const char*, std::function<void()>>> reads{
        {"first", [&] { table.first(); }},
        {"next", [&] { table.next(); }},
        {"findKey", [&] { table.findKey({30}); }},
        {"findNearest", [&] { table.findNearest({30}); }},
        {"setRange", [&] { table.setRange({30}, {40}); }},
        {"filter", [&] { table.setFilter("nro = 30"); }},
        {"refresh", [&] { table.refresh(); }},
        {"edit", [&] { table.edit(); }},
    };
    table.setFiltered(true);
    failOn("read");
    for (const auto& [name, call] : reads) {
        EXPECT_EQ(errorOf(call), ErrorKind::Io) << name;
        EXPECT_EQ(table.nro(), 21) << name;
        EXPECT_FALSE(table.hasRange()) << name;
        EXPECT_TRUE(table.filter().isEmpty()) << name;
        EXPECT_EQ(table.state(), TableState::Browse) << name;
        EXPECT_EQ(m_engine.calls.locks, 0) << name;
    }
    m_engine.calls.before = {};
    table.edit();
    table["Hinta"].setFloat(7.5);
    failOn("write");
    EXPECT_EQ(errorOf([&] { table.post(); }), ErrorKind::Io);
    EXPECT_EQ(table.state(), TableState::Edit);
    EXPECT_EQ(table["Hinta"].asFloat(), 7.5);
    m_engine.calls.before = {};
    table.cancel();
    EXPECT_EQ(table["Hinta"].asFloat(), 1);
    EXPECT_EQ(m_engine.calls.locks, 0);
    // A refused new record is dropped.
    EXPECT_EQ(errorOf([&] { table.add(30, 1, "toinen"); }), ErrorKind::DuplicateKey);
    EXPECT_EQ(table.state(), TableState::Browse);
    EXPECT_EQ(table.nro(), 21);
}

TYPED_TEST(TableOnEngine, MisuseIsRefused) {
    KoeTable table(this->m_engine.database());
    EXPECT_TRUE(table.eof() && table.bof());
    EXPECT_EQ(errorOf([&] { table["Nro"].asInteger(); }), ErrorKind::Engine);
    EXPECT_EQ(errorOf([&] { table.edit(); }), ErrorKind::Engine);
    this->fill(table);
    table.first();
    EXPECT_EQ(errorOf([&] { table["Nro"].setInteger(1); }), ErrorKind::Engine);
    table.edit();
    EXPECT_EQ(errorOf([&] { table.next(); }), ErrorKind::Engine);
    table.cancel();
    EXPECT_EQ(table.nro(), 10);
    TtbTable other;
    other.setTableName("KOE;OWNER:salainen");
    EXPECT_EQ(errorOf([&] { other.open(); }), ErrorKind::NoConnection);
    other.setDatabase(&this->m_engine.database());
    other.open();
    EXPECT_EQ(other.recordCount(), 15);
}

TYPED_TEST(TableOnEngine, LocksAreCountedAndEndWithTheirTable) {
    const auto open = [](Database& database) { return database.openTable("KOE"); };
    KoeTable(this->m_engine.database()).add(1, 1, "yksi");
    auto mine = open(this->m_engine.database());
    auto alsoMine = open(this->m_engine.database());
    const auto theirs = open(this->m_engine.otherProgram());
    this->m_engine.otherProgram().setLockWait(std::chrono::milliseconds(60));
    const StoredRecord record = mine->fromEnd(0, Direction::Forward, 1).front();
    constexpr std::chrono::milliseconds kWait{60};
    ASSERT_TRUE(mine->lock(record.id, kWait));
    ASSERT_TRUE(mine->lock(record.id, kWait));
    EXPECT_TRUE(alsoMine->lock(record.id, kWait));  // the same program
    alsoMine->update(record.id, record.bytes);
    alsoMine->unlock(record.id);
    mine->unlock(record.id);
    QElapsedTimer time;
    time.start();
    EXPECT_FALSE(theirs->lock(record.id, kWait));
    EXPECT_GE(time.elapsed(), 55);
    EXPECT_EQ(errorOf([&] { theirs->update(record.id, record.bytes); }), ErrorKind::Locked);
    EXPECT_EQ(errorOf([&] { theirs->remove(record.id); }), ErrorKind::Locked);
    EXPECT_EQ(theirs->get(record.id)->bytes, record.bytes);  // still readable
    mine->unlock(record.id);
    EXPECT_TRUE(theirs->lock(record.id, kWait));
    EXPECT_FALSE(mine->lock(record.id, kWait));
    theirs->unlock(record.id);
    ASSERT_TRUE(mine->lock(record.id, kWait));
    EXPECT_FALSE(theirs->lock(record.id, kWait));
    mine.reset();
    alsoMine.reset();
    EXPECT_TRUE(theirs->lock(record.id, kWait));
}

TYPED_TEST(TableOnEngine, TwoProgramsEditsExcludeEachOtherAndReread) {
    KoeTable mine(this->m_engine.database());
    mine.add(1, 1, "yksi", 10);
    mine.add(2, 1, "kaksi", 20);
    KoeTable theirs(this->m_engine.otherProgram());
    mine.first();
    mine.setLockWait(std::chrono::milliseconds(50));
    theirs.first();
    theirs.edit();
    EXPECT_EQ(errorOf([&] { mine.edit(); }), ErrorKind::Locked);
    EXPECT_FALSE(mine.tryEdit(std::chrono::milliseconds(0)));
    EXPECT_EQ(errorOf([&] { mine.deleteRecord(); }), ErrorKind::Locked);
    EXPECT_EQ(mine.state(), TableState::Browse);
    theirs["Hinta"].setFloat(11);
    theirs.post();
    EXPECT_EQ(mine["Hinta"].asFloat(), 10);  // as read
    mine.edit();
    EXPECT_EQ(mine["Hinta"].asFloat(), 11);  // reread under the lock
    mine["Hinta"].setFloat(mine["Hinta"].asFloat() + 1);
    mine.post();
    theirs.refresh();
    EXPECT_EQ(theirs["Hinta"].asFloat(), 12);

    // Closing releases the lock.
    theirs.edit();
    theirs.close();
    EXPECT_TRUE(mine.tryEdit(std::chrono::milliseconds(0)));
    mine.cancel();

    // Deleted by another program.
    theirs.open();
    theirs.deleteRecord();
    EXPECT_EQ(theirs.nro(), 2);
    EXPECT_EQ(errorOf([&] { mine.edit(); }), ErrorKind::Gone);
    EXPECT_EQ(mine.nro(), 1);
    mine.refresh();
    EXPECT_EQ(mine.nro(), 2);
    EXPECT_TRUE(mine.tryEdit(std::chrono::milliseconds(0)));
}

TYPED_TEST(TableOnEngine, FieldsKeepWhatTheirStorageHolds) {
    KoeTable table(this->m_engine.database());
    table.insert();
    table["nro"].setString("12");
    table["PROSENTTI"].setFloat(25.5);
    table["prosentti"].setFloat(table["Prosentti"].asFloat() * 0.1);
    // 25.5 is a single; 2.55 is not: the nearest single is 2.5499999523162842 (0x40233333).
    EXPECT_EQ(table["Prosentti"].asFloat(), 2.5499999523162842);
    EXPECT_EQ(table["Prosentti"].asString(), "2.55");
    table["Passiivinen"].setBoolean(true);
    EXPECT_EQ(table["Liput"].asInteger(), 2);
    table["Pvm"].setDate(QDate(2024, 9, 1));
    table["Huom"].setString("12,5 €");
    table["Nimi"].setString(" 12,7 ");
    EXPECT_EQ(table["Nimi"].asFloat(), 12.7);
    EXPECT_EQ(table["Huom"].asFloat(), 0);
    EXPECT_EQ(table["Pvm"].asString(), "2024-09-01");
    const QByteArray before = table.recordBytes();
    QString detail;
    EXPECT_EQ(errorOf([&] { table["Ryhma"].setValue(40000); }, &detail), ErrorKind::BadValue);
    EXPECT_TRUE(detail.contains("Ryhma")) << detail.toStdString();
    EXPECT_EQ(table.recordBytes(), before);
    EXPECT_EQ(errorOf([&] { table["Olematon"]; }), ErrorKind::NoSuchField);
}

TYPED_TEST(TableOnEngine, DeclaredAndCalculatedFields) {
    {
        KoeTable table(this->m_engine.database());
        table.add(7, 1, "seitsemän", 1234.5);
        table.edit();
        table["Pvm"].setDate(QDate(2024, 9, 1));
        table.post();
    }
    QLocale::setDefault(QLocale(QLocale::Finnish));
    TtbTable table;
    table.setDatabase(&this->m_engine.database());
    table.setTableName("KOE");
    FieldDeclaration net{"HintaAlv0", "#0.00"};
    net.calculatedKind = Kind::Float;
    net.calculate = [](const TtbTable& record) -> Value {
        const double price = record.fieldByName("hinta").asFloat();
        return price > 0 ? Value(price / 1.25) : Value();
    };
    table.setFieldDeclarations(
        {{"HINTA", "#0.0000€ "}, net, {"pvm"}, {"Passiivinen"}, {"Nro", "000"}});
    table.open();
    ASSERT_EQ(table.fields().size(), 5U);
    QStringList shown;
    for (const auto& field : table.fields())
        shown.append(field->displayText());
    EXPECT_EQ(shown, (QStringList{"1234,5000€ ", "987,60", "01.09.2024", "Ei", "007"}));
    table.fieldByName("PASSIIVINEN").setDisplayValues("K;E");
    EXPECT_EQ(table.fieldByName("passiivinen").displayText(), "E");
    EXPECT_EQ(table.findField("Nimi"), nullptr);
    table.edit();
    EXPECT_EQ(errorOf([&] { table.fieldByName("HintaAlv0").setFloat(1); }), ErrorKind::ReadOnly);
    table.fieldByName("Hinta").setFloat(0);  // the calculation sees the edit
    EXPECT_EQ(table.fieldByName("HintaAlv0").displayText(), QString());
    table.close();
    table.setFieldDeclarations({{"Olematon"}});
    EXPECT_EQ(errorOf([&] { table.open(); }), ErrorKind::NoSuchField);
    EXPECT_FALSE(table.isOpen());
    QLocale::setDefault(QLocale::c());
}

// Format, number, text.
TEST(DisplayFormat, Numbers) {
    const char* const cases =
        "#0.00|0|0,00|#0.00|1234.567|1234,57|#0.00|-0.001|0,00|#0.00|-12.345678|-12,35|"
        "#0.0000€ |8.05|8,0500€ |#.##|0|0|#.##|0.5|,5|#.##|12.30|12,3|#######.##|7|7|"
        "#0.|12.6|13|#0.0##|1.25|1,25|000|7|007|#,##0.00|1234567.5|1\u00A0234\u00A0567,50|"
        "'#'0 'kpl'|3|#3 kpl||3.4|3";
    const QStringList parts = QString(cases).split(u'|');
    for (qsizetype i = 0; i < parts.size(); i += 3)
        EXPECT_EQ(formatNumber(parts[i], parts[i + 1].toDouble(), u','), parts[i + 2])
            << parts[i].toStdString();
}

}  // namespace
