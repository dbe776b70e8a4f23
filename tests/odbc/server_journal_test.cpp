// Runs with the shops' engine's journal on a server: what the journal knows of them, undo, and
// processes that are killed during a run or its undo. TAKSAVAIHE_KILLS sets how often.
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <csignal>
#include <random>
#include <set>

#include "tests/faults/full_company.h"
#include "tests/journal/undo_company.h"
#include "tests/odbc/server_company.h"
#include "tests/support/taken_back.h"

namespace {

using data::RunState;

const QStringList kTables{"TUOTE",     "TRYHMA",        "MYYMALAHINNAT", "HR",    "ASALE",
                          "KAMPPANJA", "VAKIOLASKUTUS", "MAARAALE",      "MT",    "MTRIVI",
                          "WINOT",     "WINOTRI",       "ALVKANTA",      "INI",   "WEBKLIITOS",
                          "ASIAKAS",   "ASRYHMA",       "HINTATASO",     "X$File"};
constexpr test::FullCompanySize kSize{8, 2};
using Contents = std::map<QString, std::multiset<QByteArray>>;

bool isTimeOfChange(const data::TFieldCacheItem& field) {
    return field.kind() == data::Kind::Time || field.kind() == data::Kind::Timestamp ||
           (field.kind() == data::Kind::Date &&
            field.name.startsWith(QLatin1String("Mu"), Qt::CaseInsensitive));
}

class ServerJournal : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        m_server = QLatin1String(GetParam());
        if (!test::SqlEngine::isAvailable(m_server))
            GTEST_SKIP() << "the SQL servers are not running";
        test::makeFullCompany(m_shapes.path(), kSize);
        test::useCompany(m_shapes.path());
        {
            const test::SqlEngine engine(m_server, kTables, test::RowNumbers::Added);
            m_settings = engine.settings();
        }
        fresh();
        m_before = contents(*open());
    }

    /// The company before any run, with an empty journal.
    void fresh() {
        m_journal = std::make_unique<QTemporaryDir>();
        const auto embedded = test::openCompany(m_shapes.path());
        test::OdbcDatabase server(m_settings);
        for (const QString& table : kTables) {
            test::exec(server, QStringLiteral("DELETE FROM ") + test::quoted(table));
            test::copyTable(*embedded, server, test::sourceOf(table));
        }
    }

    std::unique_ptr<data::Database> open() {
        return std::make_unique<test::ServerCompany>(m_settings, m_shapes.path(),
                                                     m_journal->path());
    }

    enum class Times { Kept, Cleared };

    /// The tables' records without their addresses. Times and dates of change can be left
    /// out: the server has its own clock.
    static Contents contents(data::Database& database, Times times = Times::Kept) {
        Contents all;
        for (const auto& [name, records] : byId(database)) {
            const auto table = database.openTable(name);
            std::multiset<QByteArray>& found = all[name];
            for (auto [id, bytes] : records) {
                for (const data::TFieldCacheItem& field : table->layout().fields())
                    if (times == Times::Cleared && isTimeOfChange(field))
                        data::clearField(field, reinterpret_cast<uchar*>(bytes.data()));
                found.insert(bytes);
            }
        }
        return all;
    }

    static test::Records byId(data::Database& database) {
        test::Records all;
        for (const QString& table : kTables)
            for (const data::StoredRecord& record :
                 database.openTable(table)->fromEnd(0, data::Direction::Forward, 1000))
                all[table][record.id] = record.bytes;
        return all;
    }

    /// What stands in the tables, with the run's changes taken back from the last to the first.
    static test::Records takenBack(data::Database& database) {
        data::RunJournal& journal = *database.journal();
        if (journal.runs().empty())  // settles the last write
            return byId(database);
        return test::takenBack(journal, 1, byId(database));
    }

    static void expectSame(Contents expected, Contents got) {
        for (const QString& table : kTables)
            EXPECT_TRUE(expected[table] == got[table]) << table.toStdString();
    }

    static bool runOrResume(data::Database& database) {
        test::RecordingPorts ports;
        ports.program = QStringLiteral("taksavaihe");  // writes the run mark
        const bool clean = test::runOrResume(database, ports).clean();
        EXPECT_TRUE(clean) << ports.lines.join(u'\n').right(2000).toStdString();
        return clean;
    }

    static void undo(data::Database& database) {
        test::RecordingUndo ports;
        EXPECT_TRUE(vatchange::undoRun(database, 1, test::exactly(), ports).clean());
        EXPECT_EQ(ports.conflicts, QStringList());
    }

    /// Runs `body` on the company in a process of its own, which is killed after some milliseconds
    /// unless 0. Returns whether it was killed; no connection may be open.
    template <typename Body>
    bool inProcess(int killAfter, Body body) {
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            try {
                body(*open());
            } catch (const std::exception& error) {
                std::fprintf(stderr, "%s\n", error.what());
                ::_exit(1);
            }
            ::_exit(HasFailure() ? 1 : 0);
        }
        if (killAfter > 0) {
            ::usleep(static_cast<useconds_t>(killAfter) * 1000);
            ::kill(child, SIGKILL);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
        return WIFSIGNALED(status);
    }

    RunState stateOfLastRun() {
        const auto runs = open()->journal()->runs();
        return runs.empty() ? RunState::Accepted : runs.back().state;
    }

    // a resumed run writes the same run mark
    data::Clock::Override m_clock{test::changeMorning};
    QString m_server;
    QTemporaryDir m_shapes;
    std::unique_ptr<QTemporaryDir> m_journal;
    engines::shops::OdbcSettings m_settings;
    Contents m_before;
};

TEST_P(ServerJournal, KnowsEveryChangeOfARunAndTakesItBack) {
    const auto database = open();
    const test::Records before = byId(*database);
    test::Records copied = before;
    copied.erase(QStringLiteral("X$File"));
    EXPECT_EQ(test::differingTable(copied, test::readCompany(m_shapes.path())), QString());
    ASSERT_TRUE(runOrResume(*database));
    EXPECT_NE(byId(*database), before);
    EXPECT_TRUE(takenBack(*database) == before);
    undo(*database);
    expectSame(m_before, contents(*database));
    EXPECT_EQ(database->journal()->check(), QStringList());
}

TEST_P(ServerJournal, KilledRunsAndUndosGoOn) {
    QElapsedTimer time;
    time.start();
    inProcess(0, [](data::Database& database) { runOrResume(database); });
    const auto runTime = static_cast<unsigned>(time.restart());
    const Contents done = contents(*open(), Times::Cleared);
    time.restart();
    inProcess(0, [](data::Database& database) { undo(database); });
    const auto undoTime = static_cast<unsigned>(time.elapsed());
    expectSame(m_before, contents(*open()));

    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const int kills = test::countFrom("TAKSAVAIHE_KILLS", 3);
    int runs = 0;
    int undos = 0;
    for (int companies = 0; runs + undos < kills && !HasFailure(); ++companies) {
        SCOPED_TRACE("company " + std::to_string(companies));
        ASSERT_LT(companies, 20 + 5 * kills);
        fresh();
        const test::Records before = byId(*open());
        for (int attempt = 0; attempt < 2; ++attempt) {  // the resumed run is killed as well
            const bool killed = inProcess(1 + static_cast<int>(random() % runTime),
                                          [](data::Database& database) { runOrResume(database); });
            runs += killed && stateOfLastRun() == RunState::Interrupted;
            EXPECT_TRUE(takenBack(*open()) == before);
        }
        runOrResume(*open());
        expectSame(done, contents(*open(), Times::Cleared));
        const bool killed = inProcess(1 + static_cast<int>(random() % undoTime),
                                      [](data::Database& database) { undo(database); });
        undos += killed && stateOfLastRun() == RunState::Interrupted;
        const auto database = open();
        if (database->journal()->run(1)->state != RunState::Undone)
            undo(*database);
        expectSame(m_before, contents(*database));
        EXPECT_EQ(database->journal()->check(), QStringList());
    }
    std::printf("killed in the middle of the work: %d runs, %d undos\n", runs, undos);
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerJournal, ::testing::Values("virtuoso", "mariadb"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
