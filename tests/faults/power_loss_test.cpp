// Power losses at random moments of a whole run: anything not flushed may be there or not. The
// company is then in its state after one of the run's statements, and nothing is missing that was
// reported as finished. TAKSAVAIHE_LOSSES sets how many.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <random>

#include "engines/embedded/embedded_database.h"
#include "tests/faults/full_company.h"
#include "tests/faults/recording_files.h"
#include "tests/support/taken_back.h"

namespace {

using test::FileEvent;
using test::Records;

// Large enough for the write-ahead log to be moved into the database on the way.
constexpr test::FullCompanySize kSize{1000, 150};
constexpr int kResumedShare = 5;  // every so many losses the run is resumed

/// Notes how many entries the journal has when something is reported as finished.
class ReportingPorts : public test::LoggingPorts {
  public:
    explicit ReportingPorts(data::RunJournal& journal) : m_journal(journal) {}
    void NaytaViesti(const QString& text) override {
        reported();
        LoggingPorts::NaytaViesti(text);
    }
    void reported() {
        const std::vector<data::JournalRun> runs = m_journal.runs();
        reports[test::RecordingFiles::events().size()] =
            runs.empty() ? 0 : m_journal.lastEntry(runs.back().number);
    }
    std::map<size_t, qint64> reports;  // by the number of file events so far

  private:
    data::RunJournal& m_journal;
};

std::vector<data::JournalEntry> entriesOf(data::RunJournal& journal) {
    constexpr int kAll = 1000000;
    if (journal.runs().empty())
        return {};
    return journal.entries(journal.runs().back().number, 0, data::Direction::Forward, kAll);
}

class PowerLoss : public testing::Test {
  protected:
    void SetUp() override {
        const QString folder = m_folder.filePath(QStringLiteral("yritys"));
        test::makeFullCompany(folder, kSize);
        test::useCompany(folder);
        m_start[engines::kEmbeddedFileName] =
            test::fileBytes(folder + QLatin1Char('/') + engines::kEmbeddedFileName);
        m_before = test::readCompany(folder);
        {
            const test::RecordingFiles recording;
            const auto database = test::openCompany(folder);
            ReportingPorts ports(*database->journal());
            const vatchange::RunResult result = runChange(*database, test::fullDefinition(), ports);
            ports.reported();
            ASSERT_TRUE(result.clean());
            ASSERT_EQ(result.products, kSize.products);
            m_reports = ports.reports;
            m_entries = entriesOf(*database->journal());
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

    /// What power left is the company after some of the run's statements, the first ones, and none
    /// in part: its journal is the beginning of the whole run's and leads back to the start.
    /// @return the number of entries.
    qint64 expectBeginningOfRun(const QString& folder) const {
        Records records = test::readCompany(folder);
        const auto database = test::openCompany(folder);
        data::RunJournal& journal = *database->journal();
        const std::vector<data::JournalEntry> left = entriesOf(journal);
        EXPECT_LE(left.size(), m_entries.size());
        EXPECT_TRUE(std::equal(left.begin(), left.end(), m_entries.begin()));
        if (!left.empty())
            records = test::takenBack(journal, journal.runs().back().number, std::move(records));
        EXPECT_EQ(test::differingTable(records, m_before), QString());
        return std::ssize(left);
    }

    /// Entries that were there when something was last reported before that many file events.
    qint64 reportedBefore(size_t event) const {
        const auto after = m_reports.upper_bound(event);
        return after == m_reports.begin() ? 0 : std::prev(after)->second;
    }

    QTemporaryDir m_folder;
    test::ReplayedFiles::Files m_start;
    Records m_before;
    Records m_done;
    std::map<size_t, qint64> m_reports;
    std::vector<data::JournalEntry> m_entries;  // of the whole run
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
    const auto logFlushes = flushes(engines::kEmbeddedFileName + QStringLiteral("-wal"));
    EXPECT_GE(logFlushes, std::ssize(m_reports));
    EXPECT_LT(logFlushes, kSize.products) << "commits are flushed together";

    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const int losses = test::countFrom("TAKSAVAIHE_LOSSES", 25);
    std::vector<size_t> moments;
    while (static_cast<int>(moments.size()) < losses)
        moments.push_back(1 + random() % events.size());
    std::sort(moments.begin(), moments.end());
    test::ReplayedFiles files(m_start);
    size_t applied = 0;
    int resumed = 0;
    int unfinished = 0;
    for (const size_t moment : moments) {
        SCOPED_TRACE("after event " + std::to_string(moment));
        for (; applied < moment; ++applied)
            files.apply(events[applied]);
        const QString folder = m_folder.filePath(QStringLiteral("katko"));
        test::writeFiles(folder, files.afterPowerLoss(random));
        ASSERT_EQ(engines::checkEmbedded(folder), QStringList());
        const qint64 left = expectBeginningOfRun(folder);
        ASSERT_GE(left, reportedBefore(moment)) << "something is gone that was reported as done";
        unfinished += left < std::ssize(m_entries);
        if (++resumed % kResumedShare == 0)
            expectFinishes(folder);
        if (HasFailure())
            return;
    }
    std::printf("%d power losses of a run of %zu file events, %d before its last change\n", losses,
                events.size(), unfinished);
}

}  // namespace
