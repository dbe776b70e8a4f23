// Measures what the run journal costs: a run of N products with nine levels without and with it,
// each on a fresh company. Prints the processor times, the ratio of the shortest ones with and
// without the verification at the end, and the growth of the database.
//   journal_run FOLDER N

#include <sys/resource.h>

#include <QDir>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>

#include "data/sql/uni_query.h"
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

class SilentPorts : public vatchange::RunPorts {
  public:
    bool unattended() const override { return true; }
    void NaytaViesti(const QString& text) override {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    void showMessage(const QString&) override {}
    bool ask(const QString&) override { return false; }
    void log(const QString&) override {}
    void status(const QString&) override {}
    void progress(qint64, qint64) override {}
    void processEvents() override {}
    bool cancelled() const override { return false; }
    QString programFileName() const override { return QStringLiteral("journal_run"); }
    bool skipEarlyDateCheck() const override { return true; }
};

void exec(data::Database& database, const QString& sql) {
    data::TUniQuery query(&database);
    query.sql().setText(sql);
    query.execSql();
}

void fill(const QString& folder, int products) {
    QDir(folder).removeRecursively();
    engines::createEmbedded(folder, data::allTableSources());
    Company company(folder, false);
    exec(company, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (1, 24)"));
    exec(company, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (5, 25.5)"));
    data::TUniQuery insert(&company);
    insert.sql().setText(
        QStringLiteral("insert into TUOTE (NUMERO, NIMI, LVV, HINTA, KAKSOISHINTA, HINTA3, HINTA4, "
                       "HINTA5, HINTA6, HINTA7, HINTA8, HINTA9) values (:n, :nimi, 1, :h, :h + 1, "
                       ":h + 2, :h + 3, :h + 4, :h + 5, :h + 6, :h + 7, :h + 8)"));
    company.inTransaction([&] {
        for (int i = 0; i < products; ++i) {
            const QString number = QString::number(100000 + i);
            insert.paramByName(QStringLiteral("n")).setString(number);
            insert.paramByName(QStringLiteral("nimi")).setString(QStringLiteral("Tuote ") + number);
            insert.paramByName(QStringLiteral("h")).setFloat(1.0 + i % 977 * 0.13);
            insert.execSql();
        }
    });
}

vatchange::LoadedDefinition definition() {
    vatchange::ChangeDefinition made;
    made.sourceClass = 1;
    made.targetClass = 5;
    for (size_t i = 0; i < made.levels.size(); ++i)
        made.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], false};
    return made;
}

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
    fill(folder, products);
    const QFileInfo file(QDir(folder).filePath(engines::kEmbeddedFileName));
    const qint64 before = file.size();
    SilentPorts ports;
    const double begun = processorSeconds();
    double ended = 0;
    double verified = 0;
    {
        Company company(folder, journaled);
        const vatchange::RunResult result = vatchange::runChange(company, definition(), ports);
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
