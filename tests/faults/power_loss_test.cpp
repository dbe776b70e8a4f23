// A loss of power may take any write that was not flushed. The engine survives it when the database
// and its write-ahead log never have unflushed writes at the same time; a run must report nothing
// before it is flushed.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "engines/embedded/embedded_database.h"
#include "tests/faults/failing_calls.h"
#include "tests/faults/full_company.h"

namespace {

// Large enough for a checkpoint during the run.
constexpr test::FullCompanySize kSize{1000, 150};

class ReportingPorts : public test::LoggingPorts {
  public:
    std::function<void()> onReport;
    void log(const QString& line) override {
        onReport();
        LoggingPorts::log(line);
    }
    void progress(qint64 done, qint64 total) override {
        onReport();
        LoggingPorts::progress(done, total);
    }
};

TEST(PowerLoss, WhatIsReportedIsFlushed) {
    const test::ChangeMorning morning;
    const QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("yritys"));
    test::makeFullCompany(folder, kSize);
    test::useCompany(folder);
    const QString database = engines::kEmbeddedFileName;
    std::map<QString, int> unflushed{{database, 0}, {database + QStringLiteral("-wal"), 0}};
    std::map<QString, int> flushes;
    ReportingPorts ports;
    ports.onReport = [&] {
        for (const auto& [file, writes] : unflushed)
            ASSERT_EQ(writes, 0) << file.toStdString() << " before " << ports.lines.size();
    };
    {
        const test::FailingCalls watching(folder, [&](const test::FileCall& call) {
            const auto written = unflushed.find(call.file);
            if (written == unflushed.end())
                return 0;
            if (call.name == QLatin1String("flush")) {
                written->second = 0;
                ++flushes[call.file];
            } else if (call.name == QLatin1String("write") ||
                       call.name == QLatin1String("truncate")) {
                ++written->second;
                EXPECT_TRUE(unflushed.begin()->second == 0 || unflushed.rbegin()->second == 0);
            }
            return 0;
        });
        const auto result = runChange(*test::openCompany(folder), test::fullDefinition(), ports);
        EXPECT_TRUE(result.clean());
        EXPECT_EQ(result.products, kSize.products);
    }
    EXPECT_GE(flushes[database], 2) << "once during the run, once when it is closed";
    EXPECT_GE(flushes[database + QStringLiteral("-wal")], kSize.products);
}

}  // namespace
