#include <QLocale>

#include "data/record/display_format.h"
#include "tests/data/watched_engine.h"

namespace {

using namespace data;
using test::errorOf;
using test::KoeTable;

DataError diskError() {
    return DataError(ErrorKind::Io, QStringLiteral("KOE"), QStringLiteral("levy"));
}

/// Every engine must behave alike.
template <typename T>
class TableOnEngine : public ::testing::Test {
  protected:
    void fill(KoeTable& table) {
        for (int group = 1; group <= 3; ++group)
            for (int i = 0; i < 5; ++i)
                table.add(group * 10 + i, group, QStringLiteral("tuote %1").arg(i), i);
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
    KoeTable table(m_engine.database(), QStringLiteral("2"));
    fill(table);
    // A group of five rows: one call for all of them, its end included.
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
    // Rows that are posted on the way, their key unchanged, cost no further call.
    EXPECT_EQ(readsOf([&] {
                  for (table.first(); !table.eof(); table.next()) {
                      table.edit();
                      table["Nimi"].setString(QStringLiteral("uusi"));
                      table.post();
                  }
              }),
              1);
    EXPECT_EQ(readsOf([&] { table.findKey({2, 3.0}); }), 1);
    table.cancelRange();
    table.setIndexName(QStringLiteral("0"));
    // 15 records: 1, then 14 of 16.
    EXPECT_EQ(readsOf([&] { EXPECT_EQ(table.walk().size(), 15); }), 2);
}

TYPED_TEST(TableOnEngine, WritesDuringAWalkAreSeen) {
    KoeTable table(this->m_engine.database(), QStringLiteral("2"));
    this->fill(table);
    table.setRange({1}, {3});
    ASSERT_EQ(table.nro(), 10);
    // Moved ahead within the range: met again at its new place.
    table.edit();
    table["Ryhma"].setInteger(2);
    table["Hinta"].setFloat(1.5);
    table.post();
    EXPECT_EQ(table.nro(), 10);
    table.next();
    EXPECT_EQ(table.nro(), 22);
    table.first();
    EXPECT_EQ(table.walk(),
              (QList<int>{11, 12, 13, 14, 20, 21, 10, 22, 23, 24, 30, 31, 32, 33, 34}));
    // An inserted record ahead and a deleted one.
    table.first();
    table.next();
    ASSERT_EQ(table.nro(), 12);
    const Bookmark here = table.bookmark();
    table.add(99, 1, QStringLiteral("väliin"), 2.5);
    ASSERT_TRUE(table.gotoBookmark(here));
    table.next();
    EXPECT_EQ(table.nro(), 99);
    table.deleteRecord();
    EXPECT_EQ(table.nro(), 13);
    // Moved out of the range: the walk goes on where the range begins or ends.
    table.edit();
    table["Ryhma"].setInteger(9);
    table.post();
    table.next();
    EXPECT_TRUE(table.eof());
    EXPECT_EQ(table.nro(), 13);
    table.edit();
    table["Ryhma"].setInteger(0);
    table.post();
    table.next();
    EXPECT_EQ(table.nro(), 11);
}

TYPED_TEST(TableOnEngine, DeletingToTheEndEmptiesTheRange) {
    KoeTable table(this->m_engine.database(), QStringLiteral("2"));
    this->fill(table);
    table.setRange({2}, {2});
    int deleted = 0;
    for (; !table.eof(); ++deleted)
        table.deleteRecord();
    EXPECT_EQ(deleted, 1 + 4);
    EXPECT_TRUE(table.isEmpty());
    table.cancelRange();
    EXPECT_EQ(table.walk(), (QList<int>{10, 11, 12, 13, 14, 30, 31, 32, 33, 34}));
    // Not found: the record stays.
    const qint64 nro = table.nro();
    EXPECT_FALSE(table.findKey({2}));
    EXPECT_EQ(table.nro(), nro);
}

TYPED_TEST(TableOnEngine, SearchTextsMayBeLongerThanTheField) {
    KoeTable table(this->m_engine.database(), QStringLiteral("1"));
    table.add(1, 1, QStringLiteral("ABCDEFGHIJKL"));  // all twelve characters
    table.add(2, 1, QStringLiteral("åland"));
    table.add(3, 1, QStringLiteral("Äiti"));
    EXPECT_FALSE(table.findKey({QStringLiteral("ABCDEFGHIJKLM")}));
    EXPECT_TRUE(table.findKey({QStringLiteral("ÅLAND")}));
    table.setRange({QStringLiteral("abcdefghijkl")}, {QStringLiteral("abcdefghijklú")});
    EXPECT_EQ(table.walk(), (QList<int>{1}));
    table.setRange({QStringLiteral("ä")}, {QStringLiteral("äú")});
    EXPECT_EQ(table.walk(), (QList<int>{3}));
    EXPECT_EQ(errorOf([&] { table.findKey({1, 2}); }), ErrorKind::BadValue);
    EXPECT_EQ(errorOf([&] { table.setKeyField(QStringLiteral("Hinta"), 1); }),
              ErrorKind::NoSuchField);
    table.setIndexName(QStringLiteral("0"));
    EXPECT_EQ(errorOf([&] { table.setRange({QStringLiteral("x")}, {9}); }), ErrorKind::BadValue);
    EXPECT_FALSE(table.hasRange());
    EXPECT_EQ(errorOf([&] { table.setIndexName(QStringLiteral("7")); }), ErrorKind::NoSuchField);
    EXPECT_EQ(table.indexName(), QStringLiteral("0"));
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
        {"moveBy", [&] { table.moveBy(4); }},
        {"findKey", [&] { table.findKey({30}); }},
        {"findNearest", [&] { table.findNearest({30}); }},
        {"setRange", [&] { table.setRange({30}, {40}); }},
        {"filter", [&] { table.setFilter(QStringLiteral("nro = 30")); }},
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
    // A refused new record is forgotten.
    EXPECT_EQ(errorOf([&] { table.add(30, 1, QStringLiteral("toinen")); }),
              ErrorKind::DuplicateKey);
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
    table.setOnFilterRecord([](const TtbTable& candidate) {
        const_cast<TtbTable&>(candidate).next();
        return true;
    });
    EXPECT_EQ(errorOf([&] { table.setFiltered(true); }), ErrorKind::Engine);
    EXPECT_FALSE(table.filtered());
    EXPECT_EQ(table.nro(), 10);
    TtbTable other;
    other.setTableName(QStringLiteral("KOE;OWNER:salainen"));
    EXPECT_EQ(errorOf([&] { other.open(); }), ErrorKind::NoConnection);
    other.setDatabase(&this->m_engine.database());
    other.open();
    EXPECT_EQ(other.recordCount(), 15);
}

TYPED_TEST(TableOnEngine, ControlsFollowTheRecord) {
    KoeTable table(this->m_engine.database());
    this->fill(table);
    int changes = 0;
    table.setOnChange([&] { ++changes; });
    table.first();
    EXPECT_EQ(changes, 1);
    table.disableControls();
    table.walk();
    EXPECT_EQ(changes, 1);
    table.enableControls();
    EXPECT_EQ(changes, 2);
}

TYPED_TEST(TableOnEngine, TwoProgramsEditsExcludeEachOtherAndReread) {
    KoeTable mine(this->m_engine.database());
    mine.add(1, 1, QStringLiteral("yksi"), 10);
    mine.add(2, 1, QStringLiteral("kaksi"), 20);
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

    // Closing gives the lock back.
    theirs.edit();
    theirs.close();
    EXPECT_TRUE(mine.tryEdit(std::chrono::milliseconds(0)));
    mine.cancel();

    // Deleted meanwhile.
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
    table["nro"].setString(QStringLiteral("12"));
    table["PROSENTTI"].setFloat(25.5);
    table["prosentti"].setFloat(table["Prosentti"].asFloat() * 0.1);
    // 25.5 is a single; 2.55 is not: the nearest single is 2.5499999523162842 (0x40233333).
    EXPECT_EQ(table["Prosentti"].asFloat(), 2.5499999523162842);
    EXPECT_EQ(table["Prosentti"].asString(), QStringLiteral("2.55"));
    table["Passiivinen"].setBoolean(true);
    EXPECT_EQ(table["Liput"].asInteger(), 2);
    table["Pvm"].setDate(QDate(2024, 9, 1));
    table["Huom"].setString(QStringLiteral("12,5 €"));
    table["Nimi"].setString(QStringLiteral(" 12,7 "));
    EXPECT_EQ(table["Nimi"].asFloat(), 12.7);
    EXPECT_EQ(table["Nimi"].asInteger(), 12);
    EXPECT_EQ(table["Huom"].asFloat(), 0);
    EXPECT_EQ(table["Pvm"].asString(), QStringLiteral("2024-09-01"));
    QString detail;
    const std::vector<std::pair<const char*, Value>> bad{
        {"Ryhma", 40000},
        {"Ryhma", 1.5},
        {"Nimi", QStringLiteral("kolmetoista!!")},
        {"Huom", QStringLiteral("→")},
        {"Prosentti", 1e300},
        {"Pvm", QStringLiteral("2024-02-30")},
    };
    const QByteArray before = table.recordBytes();
    for (const auto& [name, value] : bad) {
        EXPECT_EQ(
            errorOf([&, &name = name, &value = value] { table[name].setValue(value); }, &detail),
            ErrorKind::BadValue)
            << name;
        EXPECT_TRUE(detail.contains(QLatin1String(name))) << detail.toStdString();
    }
    EXPECT_EQ(table.recordBytes(), before);
    EXPECT_EQ(errorOf([&] { table["Olematon"]; }), ErrorKind::NoSuchField);
    EXPECT_EQ(table.findField(QStringLiteral("Olematon")), nullptr);
}

TYPED_TEST(TableOnEngine, DeclaredAndCalculatedFields) {
    {
        KoeTable table(this->m_engine.database());
        table.add(7, 1, QStringLiteral("seitsemän"), 1234.5);
        table.edit();
        table["Pvm"].setDate(QDate(2024, 9, 1));
        table.post();
    }
    QLocale::setDefault(QLocale(QLocale::Finnish));
    TtbTable table;
    table.setDatabase(&this->m_engine.database());
    table.setTableName(QStringLiteral("KOE"));
    FieldDeclaration net{QStringLiteral("HintaAlv0"), QStringLiteral("#0.00")};
    net.calculatedKind = Kind::Float;
    net.calculate = [](const TtbTable& record) -> Value {
        const double price = record.fieldByName(QStringLiteral("hinta")).asFloat();
        return price > 0 ? Value(price / 1.25) : Value();
    };
    table.setFieldDeclarations({{QStringLiteral("HINTA"), QStringLiteral("#0.0000€ ")},
                                net,
                                {QStringLiteral("pvm")},
                                {QStringLiteral("Passiivinen")},
                                {QStringLiteral("Nro"), QStringLiteral("000")}});
    table.open();
    ASSERT_EQ(table.fields().size(), 5U);
    QStringList shown;
    for (const auto& field : table.fields())
        shown.append(field->displayText());
    EXPECT_EQ(shown, (QStringList{QStringLiteral("1234,5000€ "), QStringLiteral("987,60"),
                                  QStringLiteral("01.09.2024"), QStringLiteral("Ei"),
                                  QStringLiteral("007")}));
    table.fieldByName(QStringLiteral("PASSIIVINEN")).setDisplayValues(QStringLiteral("K;E"));
    EXPECT_EQ(table.fieldByName(QStringLiteral("passiivinen")).displayText(), QStringLiteral("E"));
    EXPECT_EQ(table.findField(QStringLiteral("Nimi")), nullptr);
    table.edit();
    EXPECT_EQ(errorOf([&] { table.fieldByName(QStringLiteral("HintaAlv0")).setFloat(1); }),
              ErrorKind::ReadOnly);
    table.fieldByName(QStringLiteral("Hinta")).setFloat(0);  // the calculation sees the edit
    EXPECT_EQ(table.fieldByName(QStringLiteral("HintaAlv0")).displayText(), QString());
    table.close();
    table.setFieldDeclarations({{QStringLiteral("Olematon")}});
    EXPECT_EQ(errorOf([&] { table.open(); }), ErrorKind::NoSuchField);
    EXPECT_FALSE(table.isOpen());
    QLocale::setDefault(QLocale::c());
}

TEST(DisplayFormat, Numbers) {
    struct Case {
        const char* format;
        double value;
        const char* shown;
    };
    const std::vector<Case> cases{
        {"#0.00", 0, "0,00"},
        {"#0.00", 1234.567, "1234,57"},
        {"#0.00", -0.001, "0,00"},
        {"#0.00", -12.345678, "-12,35"},
        {"#0.0000€ ", 8.05, "8,0500€ "},
        {"#.##", 0, "0"},
        {"#.##", 0.5, ",5"},
        {"#.##", 12.30, "12,3"},
        {"#######.##", 7, "7"},
        {"#0.", 12.6, "13"},
        {"#0.0##", 1.25, "1,25"},
        {"000", 7, "007"},
        {"#,##0.00", 1234567.5, "1\u00A0234\u00A0567,50"},
        {"'#'0 'kpl'", 3, "#3 kpl"},
        {"", 3.4, "3"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(formatNumber(QString::fromUtf8(c.format), c.value, QLatin1Char(',')),
                  QString::fromUtf8(c.shown))
            << c.format << " " << c.value;
}

}  // namespace
