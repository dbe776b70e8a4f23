// Measures the list of a run's changes: a run of N products with nine levels, then the first rows,
// reading everything, an order by percent and a filter. 90,000 products make about a million rows.
//   changes_bench FOLDER N

#include <sys/resource.h>

#include <QElapsedTimer>
#include <cstdio>
#include <cstdlib>

#include "bench/run_bench.h"
#include "engines/embedded/embedded_database.h"
#include "vatchange/changes/change_overview.h"
#include "vatchange/changes/change_reader.h"
#include "vatchange/changes/change_view.h"
#include "vatchange/run/change_run.h"

namespace {

void makeRun(const QString& folder, int products) {
    bench::makeCompany(folder, products);
    const auto company = engines::openEmbedded(QStringLiteral("KOE"), folder);
    vatchange::ChangeDefinition definition = bench::nineLevels();
    definition.writeShelfLabels = false;
    bench::SilentPorts ports;
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
