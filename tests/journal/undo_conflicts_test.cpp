// What an undo leaves as it is: runs of single statements, and what somebody changed after them.
#include "tests/journal/undo_company.h"
#include "vatchange/journal/order_fingerprint.h"

using namespace vatchange;
using test::RecordingUndo;

namespace {

struct Case {
    const char* name;
    std::vector<const char*> run;    ///< statements of the run; "order N" marks a sales order
    std::vector<const char*> since;  ///< by somebody else
    QStringList conflicts;
    std::map<QString, QString> left;  ///< query and its value afterwards
};

class UndoConflicts : public testing::TestWithParam<Case> {
  protected:
    UndoConflicts() : m_company(test::VatRates{{3, 24}}) {
        for (const char* sql :
             {"insert into TUOTE (NUMERO, NIMI, LVV, HINTA, HINTA3) values ('A', 'Naula', 3, 1, 2)",
              "insert into TRYHMA (Nro, Nimi, VERO) values (1, 'Rauta', 3)",
              "insert into MT (Numero, summa) values (9, 100)",
              "insert into MTRIVI (TilausNro, RiviNro, Ahinta, Toimitettava) values (9, 1, 5, 2)",
              "insert into MTRIVI (TilausNro, RiviNro, Ahinta, Toimitettava) values (9, 2, 7, 2)",
              "insert into HR (Tyyppi, Tuote, Maara) values (1, 'A', 3)",
              "insert into INI (IniNimi, Sektio, Avain, Data) values ('ZAV.INI', 'TAKSAVAIHE', "
              "'20240901', 'alku')"})
            m_company.exec(QString::fromUtf8(sql));
    }

    void mark(qint64 order) {
        const auto headers = database().openTable(kSalesOrderTables.header);
        const auto rows = database().openTable(kSalesOrderTables.rows);
        database().journal()->mark(orderMarkText(
            {kSalesOrderTables.header, order, orderFingerprint(*headers, *rows, order)}));
    }
    qint64 makeRun(const std::vector<const char*>& statements) {
        data::RunJournal& journal = *database().journal();
        const qint64 run = journal.begin({}, {});
        for (const QString statement : statements) {
            if (statement.startsWith(u"order "))
                mark(statement.mid(6).toLongLong());
            else
                m_company.exec(statement);
        }
        journal.end(data::RunState::Done);
        return run;
    }
    data::Database& database() { return m_company.database(); }

    test::TestCompany m_company;
};

TEST_P(UndoConflicts, AreListedAndLeft) {
    const Case& c = GetParam();
    const qint64 run = makeRun(c.run);
    for (const char* sql : c.since)
        m_company.exec(QString::fromUtf8(sql));
    UndoOptions options = test::exactly();
    options.dryRun = true;
    RecordingUndo dry;
    undoRun(database(), run, options, dry);
    EXPECT_EQ(dry.conflicts, c.conflicts);

    RecordingUndo ports;
    const UndoResult result = undoRun(database(), run, test::exactly(), ports);
    EXPECT_EQ(ports.conflicts, c.conflicts);
    EXPECT_EQ(result.clean(), c.conflicts.isEmpty());
    for (const auto& [query, value] : c.left)
        EXPECT_EQ(m_company.text(query), value) << query.toStdString();
    EXPECT_EQ(test::stateOf(database(), run), data::RunState::Undone);
    EXPECT_EQ(database().journal()->check(), QStringList());
}

const Case kCases[] = {
    {"OneFieldOfARecord",
     {"update TUOTE set HINTA = 1.1, HINTA3 = 2.2, LVV = 6"},
     {"update TUOTE set HINTA3 = 2.5, HINTA4 = 9"},
     {"TUOTE A HINTA3 2.2>2.5"},
     {{"select HINTA from TUOTE", "1"},
      {"select HINTA3 from TUOTE", "2.5"},
      {"select HINTA4 from TUOTE", "9"},
      {"select LVV from TUOTE", "3"}}},
    {"NetChangeOfSeveral",  // 1 to 1.1 to 1.2, then 1.1 by somebody else
     {"update TUOTE set HINTA = 1.1", "update TUOTE set HINTA = 1.2, HINTA3 = 3"},
     {"update TUOTE set HINTA = 1.1"},
     {"TUOTE A HINTA 1.2>1.1"},
     {{"select HINTA from TUOTE", "1.1"}, {"select HINTA3 from TUOTE", "2"}}},
    {"ChangedToAndFro",  // the run left what it found: nothing to be judged
     {"update TUOTE set HINTA = 1.1, HINTA3 = 4", "update TUOTE set HINTA = 1"},
     {"update TUOTE set HINTA = 5"},
     {},
     {{"select HINTA from TUOTE", "5"}, {"select HINTA3 from TUOTE", "2"}}},
    {"DatesOfChange",
     {"update TUOTE set HINTA = 1.1, MUUTETTUPVM = '2024-09-01'"},
     {"update TUOTE set NIMI = 'Ruuvi', MUUTETTUPVM = '2024-09-05'"},
     {},
     {{"select HINTA from TUOTE", "1"}, {"select MUUTETTUPVM from TUOTE", "2024-09-05"}}},
    {"DeletedRecord",
     {"update TRYHMA set VERO = 6"},
     {"delete from TRYHMA"},
     {"TRYHMA 1 gone"},
     {}},
    {"InsertedRecords",  // unchanged, changed, removed, inserted and deleted by the run itself
     {"insert into TRYHMA (Nro, Nimi) values (2, 'Puu')",
      "insert into TRYHMA (Nro, Nimi) values (3, 'Lasi')",
      "insert into TRYHMA (Nro, Nimi) values (4, 'Kivi')",
      "insert into TRYHMA (Nro, Nimi) values (5, 'Savi')",
      "update TRYHMA set VERO = 6 where Nro = 2", "delete from TRYHMA where Nro = 5"},
     {"update TRYHMA set Nimi = 'Ikkuna' where Nro = 3", "delete from TRYHMA where Nro = 4"},
     {"TRYHMA 3 NIMI Lasi>Ikkuna"},
     {{"select count(*) from TRYHMA", "2"}}},
    {"DeletedByTheRun",
     {"update TRYHMA set Nimi = 'Teräs'", "delete from TRYHMA"},
     {},
     {},
     {{"select Nimi from TRYHMA", "Rauta"}, {"select VERO from TRYHMA", "3"}}},
    {"DeletedByTheRunAndThereAgain",
     {"delete from TRYHMA"},
     {"insert into TRYHMA (Nro, Nimi) values (1, 'Uusi')"},
     {"TRYHMA 1 exists"},
     {{"select Nimi from TRYHMA", "Uusi"}}},
    {"LabelsAndRunMark",
     {"update HR set Maara = 1", "update INI set Data = '1. ajo'"},
     {"update HR set Maara = 8", "update INI set Data = '2. ajo'"},
     {},
     {{"select Maara from HR", "8"}, {"select Data from INI where Sektio = 'TAKSAVAIHE'", "alku"}}},
    {"FinishedOrderDelivered",  // in no field that the run changed
     {"update MTRIVI set Ahinta = 6 where RiviNro = 1", "update MT set summa = 120", "order 9"},
     {"update MTRIVI set Toimitettava = 0 where RiviNro = 2"},
     {"MT 9 order"},
     {{"select summa from MT", "120"}, {"select Ahinta from MTRIVI where RiviNro = 1", "6"}}},
    {"FinishedOrderUnchanged",
     {"update MTRIVI set Ahinta = 6 where RiviNro = 1", "update MT set summa = 120", "order 9"},
     {},
     {},
     {{"select summa from MT", "100"}, {"select Ahinta from MTRIVI where RiviNro = 1", "5"}}},
    {"OrderStoppedHalfWay",
     {"update MTRIVI set Ahinta = 6 where RiviNro = 1", "update MT set summa = 120"},
     {"update MT set summa = 130"},
     {"MT 9 SUMMA 120>130"},
     {{"select summa from MT", "130"}, {"select Ahinta from MTRIVI where RiviNro = 1", "5"}}},
};

INSTANTIATE_TEST_SUITE_P(Cases, UndoConflicts, testing::ValuesIn(kCases),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
