// Fails, one at a time, each system call that a whole run makes on the company's files: open, read,
// write, lock, flush ... of the database, the record locks, the logs and the small files.
// TAKSAVAIHE_FAULTS sets how many are tried, at most all.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <csignal>
#include <random>

#include "company/company.h"
#include "company/logs.h"
#include "engines/embedded/embedded_database.h"
#include "tests/faults/failing_calls.h"
#include "tests/faults/full_company.h"
#include "tests/support/company_folder.h"

namespace {

using test::FileCall;
using test::Records;
using vatchange::RunResult;

constexpr test::FullCompanySize kSize{3, 1};

// Tables that get rows as a side effect of another table's row.
const QStringList kFollowers{"HR", "WEBKLIITOS", "INI"};
const QStringList kKnownBeginnings{
    "Virhe ",          "Ajoa ei voi aloittaa: ",       "VIRHE: TryPost -> ",        "Tarkastus: ",
    "Tuotetiedot muu", "Myyntitilaukset konvertoitu.", "Ostotilaukset konvertoitu."};

/// A run with its outcome.
struct Attempt {
    test::LoggingPorts ports;
    RunResult result;
    QString openProblem;  ///< the database could not be opened
    QStringList logProblems;

    bool clean() const { return openProblem.isEmpty() && result.clean(); }
};

class FaultSweep : public testing::Test {
  protected:
    void SetUp() override {
        test::makeFullCompany(start(), kSize);
        m_old = test::readCompany(start());
        fresh();
        test::useCompany(folder());
        Attempt run;
        perform(run);
        ASSERT_TRUE(run.clean());
        m_new = test::readCompany(folder());
        company::setLogErrorReport([this](const QString& text) { m_logProblems += text; });
    }
    void TearDown() override { company::setLogErrorReport({}); }

    QString start() const { return m_folder.filePath(QStringLiteral("alku")); }
    QString folder() const { return m_folder.filePath(QStringLiteral("yritys")); }

    void fresh() {
        QDir(folder()).removeRecursively();
        test::copyCompany(start(), folder());
        m_logProblems.clear();
    }

    /// Runs the definition, or resumes its unfinished run.
    void perform(Attempt& run) const {
        try {
            const auto database = test::openCompany(folder());
            run.result = test::runOrResume(*database, run.ports);
        } catch (const data::DataError& error) {
            run.openProblem = error.finnish();
        }
    }

    /// A run of a fresh company; `judge` decides which calls fail.
    Attempt attempt(test::FailingCalls::Judge judge) {
        fresh();
        Attempt run;
        {
            const test::FailingCalls failing(folder(), std::move(judge));
            perform(run);
        }
        run.logProblems = m_logProblems;
        return run;
    }

    static qsizetype logLines() { return test::fileBytes(company::AlvMuutosLogName()).count('\n'); }

    void expectWords(const Attempt& run) const {
        for (const QString& message : run.ports.messages) {
            const bool known = std::any_of(
                kKnownBeginnings.begin(), kKnownBeginnings.end(),
                [&message](const QString& beginning) { return message.startsWith(beginning); });
            EXPECT_TRUE(known) << message.toStdString();
        }
    }

    static bool isOldOrNew(const QString& table, const QByteArray& record, const QByteArray& before,
                           const QByteArray& after) {
        if (record == before || record == after)
            return true;
        // Three statements change a group, two posts a sales row that gets a margin mark.
        if (table != QLatin1String("TRYHMA") && table != QLatin1String("MTRIVI"))
            return false;
        for (qsizetype i = 0; i < record.size(); ++i)
            if (record[i] != before[i] && record[i] != after[i])
                return false;
        return true;
    }

    /// Every record is old or new, and agrees with the run's counts. `inDoubt`: statements that may
    /// be stored although they failed, because the rollback could not be written.
    void expectOldOrNew(const Attempt& run, int inDoubt = 0) const {
        ASSERT_EQ(engines::checkEmbedded(folder()), QStringList());
        const Records left = test::readCompany(folder());
        qint64 products = 0;
        for (const auto& [table, records] : left) {
            if (kFollowers.contains(table))
                continue;
            ASSERT_EQ(records.size(), m_old.at(table).size());
            for (const auto& [id, record] : records) {
                EXPECT_TRUE(
                    isOldOrNew(table, record, m_old.at(table).at(id), m_new.at(table).at(id)))
                    << table.toStdString() << " " << id;
                if (table == QLatin1String("TUOTE") && id <= kSize.products)
                    products += record != m_old.at(table).at(id);
            }
        }
        EXPECT_GE(products, run.result.products);
        EXPECT_LE(products, run.result.products + inDoubt) << "products counted and changed";
        if (left != m_new) {
            EXPECT_FALSE(run.clean()) << "records are missing without an error";
        }
    }

    /// Without faults the run can be finished: then every table is as after an undisturbed run.
    void expectFinishes() const {
        Attempt again;
        perform(again);
        ASSERT_TRUE(again.clean())
            << again.openProblem.toStdString() << again.ports.messages.join('\n').toStdString();
        EXPECT_EQ(test::differingTable(test::readCompany(folder()), m_new), QString());
        EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
    }

    QTemporaryDir m_folder;
    Records m_old;
    Records m_new;
    QStringList m_logProblems;
    const data::Clock::Override m_morning{test::changeMorning};
};

TEST_F(FaultSweep, EachCallFailsOnce) {
    std::vector<FileCall> all;
    {
        const Attempt run =
            attempt([&all](const FileCall& call) { return all.push_back(call), 0; });
        ASSERT_TRUE(run.clean());
    }
    const auto calls = static_cast<int>(all.size());
    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const int wanted = test::countFrom("TAKSAVAIHE_FAULTS", 60);
    std::map<QString, int> kinds;
    int unclean = 0;
    // When a lock inside the database cannot be released, every later statement waits ten seconds:
    // two of these are enough in a full sweep, none in a short one.
    int waits = wanted >= calls ? 2 : 0;
    for (int n = 1; n <= calls; ++n) {
        if (static_cast<int>(random() % static_cast<unsigned>(calls)) >= wanted)
            continue;
        const FileCall& chosen = all[static_cast<size_t>(n) - 1];
        if (chosen.name == QLatin1String("unlock") && chosen.file.endsWith(QLatin1String("-shm")) &&
            --waits < 0)
            continue;
        FileCall failed;
        int call = 0;
        const Attempt run = attempt([&](const FileCall& c) {
            if (++call != n)
                return 0;
            failed = c;
            return test::defaultError(c);
        });
        SCOPED_TRACE("call " + std::to_string(n) + ": " + failed.name.toStdString() + " of " +
                     failed.file.toStdString());
        ++kinds[failed.name];
        unclean += !run.clean();
        expectWords(run);
        const bool isLog = failed.file == QLatin1String("ALVMUUTOS.LOG");
        const bool loses = isLog && failed.name != QLatin1String("close");
        if (run.openProblem.isEmpty()) {
            EXPECT_EQ(logLines(), run.ports.lines.size() - (loses ? 1 : 0));
        }
        EXPECT_EQ(run.logProblems.size(), isLog ? 1 : run.logProblems.size());
        EXPECT_LE(run.logProblems.size(), 1);
        expectOldOrNew(run);
        expectFinishes();
        if (HasFailure())
            break;
    }
    std::printf("%d calls in a run, %d made it unclean; tried:", calls, unclean);
    for (const auto& [kind, count] : kinds)
        std::printf(" %s %d", qPrintable(kind), count);
    std::printf("\n");
}

TEST_F(FaultSweep, SurvivesAFullOrLostDisk) {
    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    quint64 written = 0;
    quint64 calls = 0;
    ASSERT_TRUE(attempt([&](const FileCall& call) {
                    written += static_cast<quint64>(call.bytes);
                    return ++calls, 0;
                }).clean());
    const int moments = test::countFrom("TAKSAVAIHE_DISTURBANCES", 8);
    for (int i = 0; i < 2 * moments; ++i) {
        const bool gone = i % 2 == 1;
        auto left = static_cast<qint64>(random() % (gone ? calls : written));
        SCOPED_TRACE((gone ? "calls: " : "bytes: ") + std::to_string(left));
        const Attempt run = attempt([&](const FileCall& call) {
            if (gone)  // the system itself keeps the locks
                return left-- > 0 || call.name.endsWith(QLatin1String("lock")) ? 0 : EIO;
            return call.bytes > 0 && (left -= call.bytes) < 0 ? ENOSPC : 0;
        });
        expectWords(run);
        EXPECT_LE(run.logProblems.size(), gone ? run.ports.lines.size() : 2);
        expectOldOrNew(run, gone ? 1 : 0);
        expectFinishes();
    }
}

TEST_F(FaultSweep, RunsWithoutAWritableLog) {
    const Attempt run = attempt([](const FileCall& call) {
        return call.file == QLatin1String("ALVMUUTOS.LOG") ? EACCES : 0;
    });
    EXPECT_TRUE(run.clean());
    EXPECT_EQ(logLines(), 0);
    EXPECT_EQ(run.logProblems.size(), 1) << "reported once, not per line";
    EXPECT_EQ(test::readCompany(folder()), m_new);
}

TEST_F(FaultSweep, StartsANewLineAfterATruncatedLogLine) {
    fresh();
    test::LoggingPorts ports;
    ports.log(QStringLiteral("eka"));
    const auto whole = static_cast<rlim_t>(test::fileBytes(company::AlvMuutosLogName()).size());
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit few{whole + 10, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &few);
    ports.log(QStringLiteral("toka"));
    ports.log(QStringLiteral("kolmas"));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ports.log(QStringLiteral("neljäs"));
    ports.log(QStringLiteral("viides"));
    const QList<QByteArray> lines = test::fileBytes(company::AlvMuutosLogName()).split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[1], lines[0].first(10));
    EXPECT_TRUE(lines[2].endsWith("  neljäs"));
    EXPECT_EQ(lines[2].first(10), lines[0].first(10));
    EXPECT_TRUE(lines[3].endsWith("  viides"));
    EXPECT_EQ(m_logProblems.size(), 2);
}

TEST_F(FaultSweep, RefusesAReadOnlyDatabase) {
    const Attempt run = attempt([](const FileCall& call) { return call.forWriting ? EACCES : 0; });
    EXPECT_TRUE(run.openProblem.startsWith(QStringLiteral("Tietokantaan ei voi kirjoittaa")))
        << run.openProblem.toStdString();
    EXPECT_EQ(test::readCompany(folder()), m_old);
}

TEST_F(FaultSweep, SurvivesMovingTheFolder) {
    fresh();
    Attempt run;
    const QString away = m_folder.filePath(QStringLiteral("muualla"));
    run.ports.onStatus = [&](const QString& text) {
        if (text == QStringLiteral("Tuote T00002")) {
            EXPECT_TRUE(QDir().rename(folder(), away));
        }
    };
    perform(run);
    ASSERT_TRUE(QDir().rename(away, folder()));
    EXPECT_TRUE(run.clean()) << run.ports.messages.join('\n').toStdString();
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
    EXPECT_EQ(test::readCompany(folder()), m_new);
    EXPECT_LT(logLines(), run.ports.lines.size());
    EXPECT_LE(m_logProblems.size(), 2);
}

TEST_F(FaultSweep, SurvivesAJumpingClock) {
    fresh();
    std::mt19937 random(7);
    const data::Clock::Override jumps([&random] {
        return QDateTime(QDate(2024, 9, 1), QTime(6, 30))
            .addSecs(static_cast<qint64>(random() % 200'000'000) - 100'000'000);
    });
    Attempt run;
    run.ports.skipEarlyDate = true;
    perform(run);
    EXPECT_TRUE(run.clean());
    EXPECT_EQ(run.result.products, kSize.products);
    EXPECT_EQ(logLines(), run.ports.lines.size());
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

}  // namespace
