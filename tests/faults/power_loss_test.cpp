// Power losses at random moments of a whole run: anything not flushed may be there or not. The
// company is then exactly in its state after the last statement reported as done, or after the one
// being stored. TAKSAVAIHE_LOSSES sets how many.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <random>

#include "engines/embedded/embedded_database.h"
#include "tests/faults/full_company.h"
#include "tests/faults/recording_files.h"

namespace {

using test::FileEvent;
using test::Records;

// Large enough for the write-ahead log to be moved into the database on the way.
constexpr test::FullCompanySize kSize{1000, 150};
constexpr int kResumedShare = 5;  // every so many losses the run is resumed

class MarkingPorts : public test::LoggingPorts {
  public:
    void log(const QString& line) override {
        test::RecordingFiles::mark();
        LoggingPorts::log(line);
    }
    void progress(qint64 done, qint64 total) override {
        test::RecordingFiles::mark();
        LoggingPorts::progress(done, total);
    }
};

struct Moment {
    size_t event;   // number of events so far
    bool reported;  // a statement has just been reported as done
};

class PowerLoss : public testing::Test {
  protected:
    void SetUp() override {
        const QString folder = m_folder.filePath(QStringLiteral("yritys"));
        test::makeFullCompany(folder, kSize);
        test::useCompany(folder);
        m_start[engines::kEmbeddedFileName] =
            test::fileBytes(folder + QLatin1Char('/') + engines::kEmbeddedFileName);
        {
            const test::RecordingFiles recording;
            MarkingPorts ports;
            const vatchange::RunResult result =
                runChange(*test::openCompany(folder), test::fullDefinition(), ports);
            ASSERT_TRUE(result.clean());
            ASSERT_EQ(result.products, kSize.products);
        }
        m_done = test::readCompany(folder);
    }

    /// What power left can be resumed to the end of an undisturbed run.
    void expectFinishes(const QString& folder) const {
        {
            const auto database = test::openCompany(folder);
            database->deferFlushes(true);  // faster
            test::LoggingPorts ports;
            EXPECT_TRUE(test::runOrResume(*database, ports).clean());
        }
        EXPECT_EQ(test::differingTable(test::readCompany(folder), m_done), QString());
    }

    std::vector<Moment> randomMoments(std::mt19937& random, int count) const {
        const auto& events = test::RecordingFiles::events();
        std::vector<Moment> moments;
        while (static_cast<int>(moments.size()) < count) {
            const size_t event = 1 + random() % events.size();
            moments.push_back({event, events[event - 1].kind == FileEvent::Kind::Mark});
        }
        std::sort(moments.begin(), moments.end(),
                  [](const Moment& a, const Moment& b) { return a.event < b.event; });
        return moments;
    }

    Records read(const test::ReplayedFiles::Files& files) const {
        const QString folder = m_folder.filePath(QStringLiteral("kuva"));
        test::writeFiles(folder, files);
        return test::readCompany(folder);
    }

    QTemporaryDir m_folder;
    test::ReplayedFiles::Files m_start;
    Records m_done;
    const data::Clock::Override m_morning{test::changeMorning};
};

TEST_F(PowerLoss, ReportedChangesAreStoredAndNoneIsPartial) {
    const auto& events = test::RecordingFiles::events();
    const auto flushes = [&events](const QString& name) {
        return std::count_if(events.begin(), events.end(), [&name](const FileEvent& event) {
            return event.kind == FileEvent::Kind::Sync && event.file == name;
        });
    };
    // at least one during the run, one when the last program closes the database
    EXPECT_GE(flushes(engines::kEmbeddedFileName), 2);
    EXPECT_GE(flushes(engines::kEmbeddedFileName + QStringLiteral("-wal")), kSize.products);

    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const int losses = test::countFrom("TAKSAVAIHE_LOSSES", 25);
    test::ReplayedFiles files(m_start);
    size_t applied = 0;
    int reported = 0;
    int unstored = 0;
    int resumed = 0;
    for (const Moment& moment : randomMoments(random, losses)) {
        SCOPED_TRACE("after event " + std::to_string(moment.event));
        for (; applied < moment.event; ++applied)
            files.apply(events[applied]);
        const QString folder = m_folder.filePath(QStringLiteral("katko"));
        test::writeFiles(folder, files.afterPowerLoss(random));
        ASSERT_EQ(engines::checkEmbedded(folder), QStringList());
        const Records left = test::readCompany(folder);
        const Records done = read(files.seen());
        reported += moment.reported;
        if (left != done) {
            ++unstored;
            ASSERT_FALSE(moment.reported) << "something is gone that was reported as done";
            ASSERT_EQ(left, read(files.flushed())) << "neither before nor after a statement";
        }
        if (++resumed % kResumedShare == 0)
            expectFinishes(folder);
    }
    std::printf(
        "%d power losses of a run of %zu file events, %d just after a report, %d with the "
        "statement in hand\n",
        losses, events.size(), reported, unstored);
}

}  // namespace
