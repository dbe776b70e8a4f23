// Measures what the run journal costs: a run of N products with nine levels without and with it,
// each on a fresh company. Prints the processor times, the ratio of the shortest ones with and
// without the verification at the end, and the growth of the database.
//   journal_run FOLDER N

#include <sys/resource.h>

#include <QDir>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>

#include "bench/run_bench.h"
#include "engines/embedded/embedded_database.h"
#include "vatchange/journal/verification.h"
#include "vatchange/run/change_run.h"

namespace {

/// A company whose journal can be hidden.
class Company : public data::Database {
  public:
    Company(const QString& folder, bool journaled)
        : m_database(engines::openEmbedded(QStringLiteral("KOE"), folder)),
          m_journaled(journaled) {}
    QString name() const override { return m_database->name(); }
    QStringList tableNames() override { return m_database->tableNames(); }
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        return m_database->openTable(tableName);
    }
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override {
        return m_database->prepare(sql);
    }
    void setLockWait(std::chrono::milliseconds wait) override { m_database->setLockWait(wait); }
    bool beginRun() override { return m_database->beginRun(); }
    void endRun() override { m_database->endRun(); }
    data::RunJournal* journal() override { return m_journaled ? m_database->journal() : nullptr; }
    void deferFlushes(bool on) override { m_database->deferFlushes(on); }
    void flush() override { m_database->flush(); }
    bool joinsReadAndStatement() const override { return m_database->joinsReadAndStatement(); }
    void inTransaction(const std::function<void()>& body) override {
        m_database->inTransaction(body);
    }

  private:
    std::unique_ptr<data::Database> m_database;
    bool m_journaled;
};

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Measured {
    double seconds;
    double verification;  // seconds
    qint64 bytes;
};

Measured measure(const QString& folder, int products, bool journaled) {
    bench::makeCompany(folder, products);
    const QFileInfo file(QDir(folder).filePath(engines::kEmbeddedFileName));
    const qint64 before = file.size();
    bench::SilentPorts ports;
    const double begun = processorSeconds();
    double ended = 0;
    double verified = 0;
    {
        Company company(folder, journaled);
        const vatchange::RunResult result =
            vatchange::runChange(company, {bench::nineLevels()}, ports);
        if (!result.clean() || result.products != products) {
            std::fprintf(stderr, "the run failed\n");
            std::exit(1);
        }
        ended = processorSeconds();
        if (journaled)
            vatchange::verifyRun(company, result.run);
        verified = processorSeconds();
    }
    return {ended - begun, verified - ended, QFileInfo(file.filePath()).size() - before};
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "journal_run FOLDER N\n");
        return 2;
    }
    try {
        const QString folder = QString::fromLocal8Bit(arguments[1]);
        const int products = std::atoi(arguments[2]);
        Measured best[2] = {{1e9, 0, 0}, {1e9, 0, 0}};
        for (int round = 0; round < 6; ++round) {
            const int journaled = round % 2;
            const Measured measured = measure(folder, products, journaled != 0);
            std::printf("%s %.2f s, verification %.2f s, %lld bytes of growth\n",
                        journaled != 0 ? "journal" : "without", measured.seconds,
                        measured.verification, static_cast<long long>(measured.bytes));
            if (measured.seconds < best[journaled].seconds)
                best[journaled] = measured;
        }
        std::printf("ratio %.3f, without verification %.3f, %.0f bytes a product\n",
                    best[1].seconds / best[0].seconds,
                    (best[1].seconds - best[1].verification) / best[0].seconds,
                    static_cast<double>(best[1].bytes - best[0].bytes) / products);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
