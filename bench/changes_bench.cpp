// Measures the list of a run's changes: a run of N products with nine levels, then the first rows,
// reading everything, an order by percent and a filter. 90,000 products make about a million rows.
//   changes_bench FOLDER N

#include <sys/resource.h>

#include <QDir>
#include <QElapsedTimer>
#include <cstdio>
#include <cstdlib>

#include "data/sql/uni_query.h"
#include "engines/embedded/embedded_database.h"
#include "vatchange/changes/change_overview.h"
#include "vatchange/changes/change_reader.h"
#include "vatchange/changes/change_view.h"
#include "vatchange/run/change_run.h"

namespace {

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
    QString programFileName() const override { return QStringLiteral("changes_bench"); }
    bool skipEarlyDateCheck() const override { return true; }
};

void exec(data::Database& database, const QString& sql) {
    data::TUniQuery query(&database);
    query.sql().setText(sql);
    query.execSql();
}

void makeRun(const QString& folder, int products) {
    QDir(folder).removeRecursively();
    engines::createEmbedded(folder, data::allTableSources());
    const auto company = engines::openEmbedded(QStringLiteral("KOE"), folder);
    exec(*company, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (1, 24)"));
    exec(*company, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (5, 25.5)"));
    data::TUniQuery insert(company.get());
    insert.sql().setText(QStringLiteral(
        "insert into TUOTE (NUMERO, NIMI, LVV, OSTOVERO, HINTA, KAKSOISHINTA, "
        "HINTA3, HINTA4, HINTA5, HINTA6, HINTA7, HINTA8, HINTA9) values (:n, :nimi, "
        "1, 1, :h, :h + 1, :h + 2, :h + 3, :h + 4, :h + 5, :h + 6, :h + 7, :h + 8)"));
    company->inTransaction([&] {
        for (int i = 0; i < products; ++i) {
            const QString number = QString::number(100000 + i);
            insert.paramByName(QStringLiteral("n")).setString(number);
            insert.paramByName(QStringLiteral("nimi")).setString(QStringLiteral("Tuote ") + number);
            insert.paramByName(QStringLiteral("h")).setFloat(1.0 + i % 977 * 0.13);
            insert.execSql();
        }
    });
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 1;
    definition.targetClass = 5;
    definition.writeShelfLabels = false;
    for (size_t i = 0; i < definition.levels.size(); ++i)
        definition.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], false};
    SilentPorts ports;
    if (!vatchange::runChange(*company, {definition}, ports).clean())
        std::fprintf(stderr, "the run failed\n");
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "changes_bench FOLDER N\n");
        return 2;
    }
    try {
        const QString folder = QString::fromLocal8Bit(arguments[1]);
        const int products = std::atoi(arguments[2]);
        if (products > 0)
            makeRun(folder, products);  // 0: the company of an earlier call
        const auto company = engines::openEmbedded(QStringLiteral("KOE"), folder);
        QElapsedTimer timer;
        const auto told = [&timer](const char* what, int rows) {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            std::printf("%-20s %6lld ms, %d rows, %ld MB\n", what,
                        static_cast<long long>(timer.elapsed()), rows, usage.ru_maxrss / 1024);
            timer.restart();
        };
        timer.start();
        vatchange::ChangeList list;
        vatchange::ChangeReader reader(*company, {1}, list);
        vatchange::ChangeView view(list);
        bool more = reader.read(QDeadlineTimer(20));
        view.takeNewRows();
        told("first rows", view.count());
        while (more && !reader.verifiesNext())
            more = reader.read(QDeadlineTimer(20));
        told("the journal", list.rowCount());
        reader.readAll();
        view.takeNewRows();
        told("verification", list.rowCount());
        const vatchange::ChangeOverview overview = vatchange::overviewOf(list);
        told("overview", static_cast<int>(overview.spread.count));
        view.sort(vatchange::ChangeColumn::Percent, Qt::DescendingOrder);
        told("order by percent", view.count());
        view.sort(vatchange::ChangeColumn::Name, Qt::DescendingOrder);
        told("order by name", view.count());
        vatchange::ChangeFilter filter;
        filter.text = QStringLiteral("tuote 1234");
        view.setFilter(filter);
        told("filter by text", view.count());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
