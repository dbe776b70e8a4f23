// A process is killed at random moments of a whole run. Resumed, the run ends like an undisturbed
// one. TAKSAVAIHE_KILLS sets how often.
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <random>

#include "engines/embedded/embedded_database.h"
#include "tests/faults/full_company.h"

namespace {

constexpr test::FullCompanySize kSize{60, 12};
constexpr int kTimeoutMs = 120000;

class KilledRun : public testing::Test {
  protected:
    KilledRun() { test::makeFullCompany(m_start, kSize); }

    void fresh() {
        QDir(m_company).removeRecursively();
        test::copyCompany(m_start, m_company);
    }

    /// Runs or resumes; kills the process after some milliseconds unless 0. Returns its exit
    /// status, -1 if it was killed.
    int run(int killAfter) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(qEnvironmentVariable("TAKSAVAIHE_BIN") + QStringLiteral("/fault_child"),
                    {QStringLiteral("all"), m_company});
        EXPECT_TRUE(child.waitForStarted());
        if (killAfter > 0 && !child.waitForFinished(killAfter))
            child.kill();
        EXPECT_TRUE(child.state() == QProcess::NotRunning || child.waitForFinished(kTimeoutMs));
        return child.exitStatus() == QProcess::NormalExit ? child.exitCode() : -1;
    }

    QTemporaryDir m_folder;
    const QString m_start = m_folder.filePath(QStringLiteral("alku"));
    const QString m_company = m_folder.filePath(QStringLiteral("yritys"));
};

TEST_F(KilledRun, EndsLikeAnUndisturbedOne) {
    fresh();
    QElapsedTimer time;
    time.start();
    ASSERT_EQ(run(0), 0);
    const auto whole = static_cast<unsigned>(time.elapsed());
    const auto done = test::readCompany(m_company);
    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    int killed = 0;
    int halfDone = 0;
    const int kills = test::countFrom("TAKSAVAIHE_KILLS", 5);
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        fresh();
        const auto before = test::readCompany(m_company);
        for (int attempt = 0; attempt < 2; ++attempt) {  // the resumed run is killed as well
            killed += run(1 + static_cast<int>(random() % whole)) == -1;
            ASSERT_EQ(engines::checkEmbedded(m_company), QStringList());
            const auto left = test::readCompany(m_company);
            halfDone += !test::differingTable(left, before).isEmpty() &&
                        !test::differingTable(left, done).isEmpty();
        }
        ASSERT_EQ(run(0), 0);
        EXPECT_EQ(test::differingTable(test::readCompany(m_company), done), QString());
    }
    std::printf("%d of %d processes killed, %d of them in the middle of the work\n", killed,
                2 * kills, halfDone);
}

}  // namespace
