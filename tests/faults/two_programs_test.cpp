// Other programs edit the company during a run. TAKSAVAIHE_ROUNDS sets the number of runs.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <memory>
#include <set>

#include "data/table/tb_table.h"
#include "engines/embedded/embedded_database.h"
#include "tests/faults/two_programs.h"

namespace {

constexpr test::FullCompanySize kSize{60, 10};
constexpr int kTimeoutMs = 120000;

class Child : public QProcess {
  public:
    explicit Child(const QStringList& arguments) {
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start(qEnvironmentVariable("TAKSAVAIHE_BIN") + QStringLiteral("/fault_child"), arguments);
        EXPECT_TRUE(waitForStarted());
    }
    /// Ends its input and waits; @return its exit status, -1 when it hangs or crashes.
    int finish() {
        closeWriteChannel();
        if (!waitForFinished(kTimeoutMs) || exitStatus() != QProcess::NormalExit)
            return -1;
        return exitCode();
    }
};

class TwoPrograms : public testing::Test {
  protected:
    void SetUp() override {
        test::makeFullCompany(folder(), kSize);
        test::useCompany(folder());
        m_database = test::openCompany(folder());
    }
    QString folder() const { return m_folder.filePath(QStringLiteral("yritys")); }

    QTemporaryDir m_folder;
    std::unique_ptr<data::Database> m_database;
    const data::Clock::Override m_morning{test::changeMorning};
};

TEST_F(TwoPrograms, KeepsEditsDuringRunsAndConvertsOrReportsEveryProduct) {
    const auto prices = test::fieldByKey(*m_database, "TUOTE", "HINTA");
    std::map<QString, std::map<QString, double>> counters{
        {"TUOTE", test::fieldByKey(*m_database, "TUOTE", test::kProductCounter)},
        {"MT", test::fieldByKey(*m_database, "MT", test::kOrderCounter)}};
    const unsigned seed = test::seedOfTest();
    SCOPED_TRACE("TAKSAVAIHE_SEED=" + std::to_string(seed));
    std::vector<std::unique_ptr<Child>> editors;
    for (unsigned i = 0; i < 2; ++i)
        editors.push_back(
            std::make_unique<Child>(QStringList{"edit", folder(), QString::number(seed + i)}));

    // Every fifth run, another process holds this product throughout.
    const QString heldNumber = QStringLiteral("T00007");
    std::map<QString, int> doublings;
    qint64 converted = 0;
    qint64 skipped = 0;
    const int rounds = test::countFrom("TAKSAVAIHE_ROUNDS", 6);
    for (int round = 0; round < rounds; ++round) {
        const bool there = round % 2 == 0;
        std::unique_ptr<Child> holder;
        if (round % 5 == 4) {
            holder = std::make_unique<Child>(QStringList{"hold", folder(), heldNumber});
            ASSERT_TRUE(holder->waitForReadyRead(kTimeoutMs));
        }
        const auto classes = test::fieldByKey(*m_database, "TUOTE", "LVV");
        test::RecordingPorts ports;
        const auto result =
            runChange(*m_database, there ? test::doubling(3, 6) : test::doubling(6, 3), ports);
        EXPECT_FALSE(result.refused);
        EXPECT_EQ(result.failedSteps, 0) << ports.messages.join('\n').toStdString();
        std::set<QString> done;
        std::set<QString> told;
        for (const QString& line : ports.lines) {
            if (line.startsWith(QLatin1String("Tuote: ")))
                done.insert(line.section(QLatin1Char(' '), 1, 1));
            if (line.endsWith(QLatin1String(" tuotetta ei voi muokata")))
                told.insert(line.section(QLatin1Char(' '), 3, 3));
        }
        EXPECT_EQ(static_cast<qint64>(done.size()), result.products);
        EXPECT_EQ(static_cast<int>(told.size()), result.skippedProducts);
        EXPECT_EQ(told.contains(heldNumber),
                  holder && classes.at(heldNumber) == (there ? 3.0 : 6.0));
        for (const auto& [number, vatClass] : classes)
            EXPECT_EQ(done.contains(number) + told.contains(number),
                      vatClass == (there ? 3 : 6) ? 1 : 0)
                << number.toStdString();
        for (const QString& number : done)
            doublings[number] += there ? 1 : -1;
        converted += result.products;
        skipped += result.skippedProducts;
        if (holder) {
            EXPECT_EQ(holder->finish(), 0);
        }
    }

    qint64 edits = 0;
    for (const auto& editor : editors) {
        ASSERT_EQ(editor->finish(), 0);
        for (const QByteArray& line : editor->readAllStandardOutput().split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.size() != 3)
                continue;
            counters[words[0]][QString::fromUtf8(words[1])] += words[2].toDouble();
            edits += words[2].toLongLong();
        }
    }
    EXPECT_EQ(test::fieldByKey(*m_database, "TUOTE", test::kProductCounter), counters["TUOTE"]);
    EXPECT_EQ(test::fieldByKey(*m_database, "MT", test::kOrderCounter), counters["MT"]);
    for (const auto& [number, price] : test::fieldByKey(*m_database, "TUOTE", "HINTA"))
        EXPECT_DOUBLE_EQ(price, std::ldexp(prices.at(number), doublings[number]))
            << number.toStdString();
    m_database.reset();
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
    std::printf("%d runs, %lld products converted and %lld skipped beside %lld edits\n", rounds,
                static_cast<long long>(converted), static_cast<long long>(skipped),
                static_cast<long long>(edits));
}

TEST_F(TwoPrograms, RefusesOneOfTwoConcurrentRuns) {
    m_database.reset();
    const QString start = m_folder.filePath(QStringLiteral("alku"));
    test::copyCompany(folder(), start);
    for (int round = 0; round < std::max(3, test::countFrom("TAKSAVAIHE_ROUNDS", 6) / 2); ++round) {
        QDir(folder()).removeRecursively();
        test::copyCompany(start, folder());
        Child first({"run", folder()});
        Child second({"run", folder()});
        const int statuses[] = {first.finish(), second.finish()};
        qint64 products = 0;
        for (Child* child : {&first, &second})
            products += child->readAllStandardOutput().trimmed().toLongLong();
        EXPECT_EQ(products, kSize.products) << "converted once, by one or by the other";
        for (const int status : statuses)
            EXPECT_TRUE(status == 0 || status == 3) << status;
        EXPECT_NE(statuses[0] + statuses[1], 6) << "both were refused";
    }
}

// A company's folder may hold a symbolic link to the database.
TEST_F(TwoPrograms, ShareLocksThroughASymbolicLink) {
    const QString other = m_folder.filePath(QStringLiteral("linkki"));
    ASSERT_TRUE(QDir().mkpath(other));
    const QString file = QLatin1Char('/') + engines::kEmbeddedFileName;
    ASSERT_TRUE(QFile::link(folder() + file, other + file));
    const auto byLink = test::openCompany(other);
    ASSERT_TRUE(m_database->beginRun());
    EXPECT_FALSE(byLink->beginRun());
    m_database->endRun();
    EXPECT_TRUE(byLink->beginRun());
}

TEST_F(TwoPrograms, CreateFilesThatOthersCannotWrite) {
    m_database->beginRun();
    test::LoggingPorts ports;
    ports.log(QStringLiteral("rivi"));
    constexpr auto kForOthers = QFile::WriteOther | QFile::ExeOther;
    for (const QFileInfo& file : QDir(folder()).entryInfoList(QDir::Files))
        EXPECT_FALSE(file.permissions() & kForOthers) << file.fileName().toStdString();
}

// edit() locks the record, but a record lock does not exclude the program that holds it.
TEST_F(TwoPrograms, RejectAPostOverAnInterveningChange) {
    data::TtbTable first;
    data::TtbTable second;
    for (data::TtbTable* table : {&first, &second}) {
        table->setDatabase(m_database.get());
        table->setTableName(QStringLiteral("TUOTE"));
        table->open();
        table->edit();
    }
    first.fieldByName(QStringLiteral("Kysely1")).setInteger(5);
    second.fieldByName(QStringLiteral("Kysely2")).setInteger(6);
    first.post();
    EXPECT_THROW(second.post(), data::DataError);
    second.cancel();
    second.edit();
    second.fieldByName(QStringLiteral("Kysely2")).setInteger(6);
    second.post();
    first.edit();
    EXPECT_EQ(first.fieldByName(QStringLiteral("Kysely1")).asInteger(), 5);
    EXPECT_EQ(first.fieldByName(QStringLiteral("Kysely2")).asInteger(), 6);
    first.post();
}

}  // namespace
