// Runs that are interrupted at every possible moment and resumed. They must leave what an
// uninterrupted run leaves, in every table.
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>

#include "data/engine/run_journal.h"
#include "tests/run/run_company.h"

namespace {

using data::RunState;
using test::RunCompany;
using vatchange::ChangeDefinition;
using vatchange::RunResult;
using Tables = std::map<QString, QList<QByteArray>>;

const QString kMarks = QStringLiteral("WEBKLIITOS");

Tables tablesOf(data::Database& database) {
    Tables tables;
    for (const QString& name : database.tableNames()) {
        QList<QByteArray>& records = tables[name];
        database.openTable(name)->visitStored(std::nullopt, std::numeric_limits<int>::max(),
                                              [&records](data::RecordId, const QByteArray& bytes) {
                                                  records +=
                                                      QByteArray(bytes.constData(), bytes.size());
                                                  return true;
                                              });
        std::sort(records.begin(), records.end());
    }
    return tables;
}

/// Interrupts a run at one of its calls.
class InterruptingPorts : public test::RecordingPorts {
  public:
    InterruptingPorts() { program = QStringLiteral("taksavaihe"); }  // writes the run mark

    int throwAt = 0;   ///< number of the logged line or status that fails; 0: none
    int cancelAt = 0;  ///< number of the event processing at which the user stops; 0: none
    QStringList failingLines;

    void log(const QString& line) override {
        RecordingPorts::log(line);
        interrupt(failingLines.contains(line));
    }
    void NaytaViesti(const QString& text) override {
        RecordingPorts::NaytaViesti(text);
        interrupt(false);
    }
    void status(const QString& text) override {
        RecordingPorts::status(text);
        interrupt(failingLines.contains(text));
    }
    void processEvents() override { ++m_polls; }
    bool cancelled() const override { return cancelAt > 0 && m_polls >= cancelAt; }

  private:
    void interrupt(bool fails) {
        if (++m_calls == throwAt || fails)
            throw std::runtime_error("interrupted");
    }
    int m_calls = 0;
    int m_polls = 0;
};

class InterruptedRun : public testing::Test {
  protected:
    InterruptedRun() {
        m_definition = test::addSharedKeys(m_company);
        m_definition.purchaseCoefficient = test::k24To25_5;
        m_definition.products = m_definition.checkProductCodes = true;
        m_definition.quantityDiscounts = m_definition.recurringInvoicing = true;
        m_definition.salesOrders = m_definition.purchaseOrders = true;
        m_definition.salesOrderCoefficient = test::k24To25_5;
        m_definition.levels[1] = {1.0, QStringLiteral("hinta"), false};
        m_definition.mostPercent = 5;  // D1 is passed over; an old price of 0 does not count
        m_company.execAll(
            {"update TUOTE set HINTA=12.4, HRKPL=2, Verkkokauppa=1, maaraale=1 where NUMERO='A1'",
             "insert into TUOTE (NUMERO, LVV, ALV2, HINTA, HRKPL, Verkkokauppa, maaraale) values "
             "('B/1', 2, 3, 9.9, 1, 1, 2)",
             "insert into TUOTE (NUMERO, LVV, HINTA, Verkkokauppa) values ('C/1', 6, 5, 1)",
             "insert into TUOTE (NUMERO, AliRyhma, LVV, HINTA, KAKSOISHINTA, HRKPL, Verkkokauppa, "
             "maaraale) values ('D1', 9, 3, 10, 5, 1, 1, 2)",
             "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'D1', 10)",
             "insert into ASALE (Tuote, Hinta, Tyyppi) values ('D1', 9, 1), ('D1', 8, 1)",
             "insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta) values ('D1', 1, 9)",
             "insert into VAKIOLASKUTUS (Asiakas, Tuote, ahinta, Yhteensa) values (1, 'D1', 9, 9)",
             "insert into HR (Tyyppi, Tuote, Maara) values (1, 'B/1', 7)",
             "insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (1, 3, 3, 3)",
             "insert into TRYHMA (Nro, VERO, OSTOVERO) values (2, 3, 2)",
             "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'A1', 12.4)",
             "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (2, 'A1', 12.9)",
             "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, 'a1', 13)",
             "insert into VAKIOLASKUTUS (Asiakas, Tuote, ahinta, Yhteensa) values (1, 'A1', 5, 10)",
             "insert into VAKIOLASKUTUS (Asiakas, Tuote, ahinta, Yhteensa) values (2, 'B/1', 7, 7)",
             "insert into MAARAALE (Numero, Arvo, Ostohinta) values (1, 9.5, 2)",
             "insert into MAARAALE (Numero, Arvo, Ostohinta) values (2, 8, 1)"});
        for (int order = 1; order <= 2; ++order) {
            m_company.exec(
                QStringLiteral("insert into MT (Numero, Toimitustila) values (%1, 1)").arg(order));
            m_company.exec(
                QStringLiteral("insert into WINOT (TilausNro, Tila) values (%1, 1)").arg(order));
            // row, class, purchase price, margin: the second and the third get a margin mark
            for (const char* row : {"1, 3, 5, 20", "2, 2, 5, 0", "3, 3, 10, 0", "4, 3, 7, 0"})
                m_company.exec(
                    QStringLiteral("insert into MTRIVI (TilausNro, RiviNro, Verokanta, "
                                   "Ostohinta, Kate, Maara, Toimitettava, Ahinta, Netto) "
                                   "values (%1, %2, 4, 4, 10, 40)")
                        .arg(order)
                        .arg(QLatin1String(row)));
            for (int row = 1; row <= 2; ++row)
                m_company.exec(QStringLiteral("insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, "
                                              "Tulematta, Maara, OstoHinta) values (%1, %2, 3, 1, "
                                              "2, 10)")
                                   .arg(order)
                                   .arg(row));
        }
        company::TZavDbConnectionModule::shutDown();  // moves everything into the database file
        m_start = test::fileBytes(m_company.file(engines::kEmbeddedFileName));
        const auto database = openCopy(m_start, {});
        m_old = tablesOf(*database);
        EXPECT_TRUE(whole(run(*database, m_whole, 0)));
        m_done = tablesOf(*database);
        m_log = test::fileBytes(copyName(QStringLiteral("-wal")));
    }

    /// Whether a run has left nothing behind but the product over the limit.
    static bool whole(RunResult result) {
        EXPECT_EQ(result.limitedNumbers, QStringList("D1"));
        --result.limitedProducts;
        return result.clean();
    }

    QString copyName(const QString& suffix) const {
        return m_folder.filePath(engines::kEmbeddedFileName + suffix);
    }

    /// Opens a copy of the company with a write-ahead log.
    std::unique_ptr<data::Database> openCopy(const QByteArray& file, const QByteArray& log) const {
        QFile::remove(copyName(QStringLiteral("-shm")));
        QFile::remove(copyName(QStringLiteral("-wal")));
        test::writeFile(copyName({}), file);
        if (!log.isEmpty())
            test::writeFile(copyName(QStringLiteral("-wal")), log);
        auto database = engines::openEmbedded(QStringLiteral("Koeyritys"), m_folder.path());
        database->deferFlushes(true);  // faster
        return database;
    }

    RunResult run(data::Database& database, InterruptingPorts& ports, qint64 resumed) const {
        return vatchange::runChange(database, m_definition, ports, {resumed, 0});
    }

    /// Number of the unfinished run; 0 if the company has none.
    static qint64 unfinished(data::Database& database) {
        const auto runs = database.journal()->runs();
        return !runs.empty() && (data::isUnfinished(runs.back().state) ||
                                 runs.back().state == RunState::Errors)
                   ? runs.back().number
                   : 0;
    }

    /// Resumes the run, or starts it if it never began, and compares every table.
    void expectFinishes(data::Database& database, bool stepsFailed = false) const {
        InterruptingPorts ports;
        const RunResult result = run(database, ports, unfinished(database));
        EXPECT_TRUE(whole(result)) << ports.lines.join('\n').toStdString();
        EXPECT_EQ(result.state, RunState::Done);
        EXPECT_EQ(database.journal()->runs().size(), 1U);
        EXPECT_EQ(database.journal()->runs().back().state, RunState::Done);
        const Tables left = tablesOf(database);
        Tables expected = m_done;
        // A product that the code check took off the web shop before the products step was repeated
        // gets no mark of its new price.
        if (stepsFailed)
            expected.at(kMarks).removeIf([&left](const QByteArray& mark) {
                return mark.contains("B/1") && !left.at(kMarks).contains(mark);
            });
        for (const auto& [table, records] : expected)
            EXPECT_TRUE(left.at(table) == records) << table.toStdString() << '\n'
                                                   << ports.lines.join('\n').toStdString();
    }

    RunCompany m_company;
    QTemporaryDir m_folder;
    ChangeDefinition m_definition;
    QByteArray m_start;
    QByteArray m_log;  // of the whole run
    InterruptingPorts m_whole;
    Tables m_old;
    Tables m_done;
};

/// The lengths of a write-ahead log at its commits.
std::vector<qsizetype> commitsOf(const QByteArray& log) {
    constexpr qsizetype kHeader = 32;
    constexpr qsizetype kFrameHeader = 24;
    const auto number = [&log](qsizetype at) {
        return static_cast<qsizetype>(qFromBigEndian<quint32>(log.constData() + at));
    };
    const qsizetype frame = kFrameHeader + number(8);
    std::vector<qsizetype> commits;
    for (qsizetype at = kHeader; at + frame <= log.size(); at += frame) {
        if (number(at + 4) != 0)
            commits.push_back(at + frame);
    }
    return commits;
}

TEST_F(InterruptedRun, ProcessDiesAfterEachStatement) {
    const std::vector<qsizetype> commits = commitsOf(m_log);
    ASSERT_GT(commits.size(), 60U);
    int cut = 0;
    for (size_t n = 0; n + 1 < commits.size() && !HasFailure(); ++n) {  // the last one ends the run
        SCOPED_TRACE("statement " + std::to_string(n));
        const auto database = openCopy(m_start, m_log.left(commits[n]));
        if (n % 3 != 0) {  // the resumed run is interrupted as well
            InterruptingPorts ports;
            ports.cancelAt = static_cast<int>(n * 7 % 40) + 1;
            cut += run(*database, ports, unfinished(*database)).cancelled;
        }
        expectFinishes(*database);
    }
    EXPECT_GT(cut, 20);
}

TEST_F(InterruptedRun, StoppedOrFailingAtEachCall) {
    for (int n = 1; !HasFailure(); ++n) {
        InterruptingPorts ports;
        ports.cancelAt = n;
        SCOPED_TRACE("stopped at " + std::to_string(n));
        const auto database = openCopy(m_start, {});
        const RunResult result = run(*database, ports, 0);
        if (!result.cancelled)
            break;
        EXPECT_EQ(result.state, RunState::Stopped);
        expectFinishes(*database);
    }
    for (int n = 1; n <= m_whole.lines.size() + m_whole.statuses.size() && !HasFailure(); ++n) {
        InterruptingPorts ports;
        ports.throwAt = n;
        SCOPED_TRACE("fails at " + std::to_string(n));
        auto database = openCopy(m_start, {});
        try {
            run(*database, ports, 0);
        } catch (const std::runtime_error&) {  // between the steps: as if the process died
            database.reset();
            database = engines::openEmbedded(QStringLiteral("Koeyritys"), m_folder.path());
        }
        expectFinishes(*database, true);
    }
}

TEST_F(InterruptedRun, StepsThatFailedBeforeTheyKnewTheirRows) {
    InterruptingPorts ports;
    ports.failingLines = {"Aloitetaan asiakashinnastojen päivitys",
                          "Aloitetaan kampanjoiden päivitys",
                          "Aloitetaan vakiolaskutusten päivitys", "Aloitetaan määräalejen päivitys",
                          "tarkastetaan myymalahinnat"};
    const auto database = openCopy(m_start, {});
    const RunResult result = run(*database, ports, 0);
    EXPECT_EQ(result.failedSteps, 5);
    EXPECT_EQ(result.state, RunState::Errors);
    EXPECT_EQ(tablesOf(*database).at("ASALE"), m_old.at("ASALE"));
    for (const char* table : {"ASALE", "KAMPPANJA", "VAKIOLASKUTUS", "MAARAALE", "MYYMALAHINNAT"})
        database->journal()->setNote(result.run, QStringLiteral("rows/") + table, {});
    expectFinishes(*database);
}

TEST_F(InterruptedRun, ProductsThatAnotherProgramHolds) {
    const auto hold = [](data::Database& other) {
        auto products = other.openTable(QStringLiteral("TUOTE"));
        const auto record = products->seek(0, data::SeekOp::Equal, {QStringLiteral("A1")}, 1);
        EXPECT_TRUE(products->lock(record.at(0).id, std::chrono::milliseconds(0)));
        return products;
    };
    {
        const auto database = openCopy(m_start, {});
        const auto other = engines::openEmbedded(QStringLiteral("Koeyritys"), m_folder.path());
        auto held = hold(*other);
        InterruptingPorts ports;
        ports.onStatus = [&held](const QString& text) {
            if (text == QStringLiteral("Tuote B/1"))
                held.reset();
        };
        EXPECT_TRUE(whole(run(*database, ports, 0)));
        EXPECT_TRUE(ports.hasLine("Virhe tuotteen päivityksessä: A1 tuotetta ei voi muokata"));
        EXPECT_TRUE(ports.hasLine("Huomaa: tuote A1 muutettiin uudella yrityksellä"));
        EXPECT_EQ(tablesOf(*database), m_done);
    }
    const auto database = openCopy(m_start, {});
    const auto other = engines::openEmbedded(QStringLiteral("Koeyritys"), m_folder.path());
    auto held = hold(*other);
    InterruptingPorts ports;
    const RunResult first = run(*database, ports, 0);
    EXPECT_EQ(first.state, RunState::Incomplete);
    EXPECT_EQ(first.skippedNumbers, QStringList("A1"));
    held.reset();

    // the batch's next definition would multiply the rows of A1 again
    const Tables between = tablesOf(*database);
    ChangeDefinition dependents = m_definition;
    dependents.subGroup = {true, 0, 0, QStringLiteral("9")};
    dependents.products = dependents.salesOrders = dependents.purchaseOrders = false;
    InterruptingPorts second;
    const RunResult next = vatchange::runChange(*database, dependents, second, {0, first.run});
    EXPECT_FALSE(next.clean());
    EXPECT_GT(second.linesWith("Huomaa: taulun ASALE riviä ei muuteta, koska saman erän"), 0);
    EXPECT_EQ(tablesOf(*database), between);
    database->journal()->forget(next.run);
    expectFinishes(*database);
}

TEST_F(InterruptedRun, IsNotResumedAfterAChangeOfWhatItWasMadeWith) {
    const auto database = openCopy(m_start, {});
    InterruptingPorts ports;
    ports.cancelAt = 5;
    const qint64 number = run(*database, ports, 0).run;
    const Tables between = tablesOf(*database);
    const auto refusal = [&](qint64 resumed, const ChangeDefinition& definition,
                             const QString& name) {
        InterruptingPorts again;
        again.definition = name;
        const RunResult result = vatchange::runChange(*database, definition, again, {resumed, 0});
        EXPECT_TRUE(result.refused);
        EXPECT_EQ(result.run, 0);
        return result.refusal;
    };
    ChangeDefinition other = m_definition;
    other.levels[0].coefficient = 1.1;
    EXPECT_EQ(refusal(9, m_definition, "Koe"),
              "Ajoa 9 ei voi jatkaa: sitä ei ole ajopäiväkirjassa.");
    EXPECT_TRUE(refusal(number, m_definition, "Muu").endsWith("se on määrittelyn Koe ajo."));
    EXPECT_TRUE(refusal(number, other, "Koe").contains(": määrittelyä on muutettu ajon"));
    test::exec(*database, "update ALVKANTA set Prosentti = 13.5 where luokka = 2");
    EXPECT_TRUE(refusal(number, m_definition, "Koe").contains("prosentteja on muutettu ajon"));
    test::exec(*database, "update ALVKANTA set Prosentti = 14 where luokka = 2");
    EXPECT_EQ(tablesOf(*database), between);
    expectFinishes(*database);
    EXPECT_TRUE(refusal(number, m_definition, "koe").endsWith("se ei ole kesken."));
}

}  // namespace
