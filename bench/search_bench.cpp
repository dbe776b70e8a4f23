// Measures the product search window on a registered company, offscreen:
//
//   search_bench COMPANY [--grab FOLDER]
//
// Times opening until the first rows are painted, nearest search compared with keyed reads of a
// screen of rows, record search compared with a LIKE scan of an ordinary table (processor time;
// medians of pairs), jumps of the scroll bar; and measures the growth of anonymous memory. --grab
// also writes screenshots. The settings value "niminimi2haku" decides whether a search of the names
// looks at both of them.

#include <sqlite3.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>

#include "company/company.h"
#include "company/connection_module.h"
#include "data/record/record_codec.h"
#include "search/group_haku.h"
#include "search/table_model.h"
#include "search/tuote_haku.h"

namespace {

double cpuMs() {
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

double wallMs() {
    return std::chrono::duration<double, std::milli>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double timed(const std::function<void()>& work) {
    const double start = wallMs();
    work();
    return wallMs() - start;
}

double processorTimed(const std::function<void()>& work) {
    const double start = cpuMs();
    work();
    return cpuMs() - start;
}

qint64 anonymousKb() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("RssAnon:"))
            return line.mid(8).trimmed().split(' ').first().toLongLong();
    }
    return 0;
}

void idle(search::TBtrHakuForm& form) {
    while (!form.model().isCountExact())
        QCoreApplication::processEvents();
    QTest::qWait(200);
}

// An ordinary SQLite table of product numbers and names, padded to the size of a product's record,
// with the engine's cache and like it not mapped into memory.
class PlainTable {
  public:
    explicit PlainTable(data::TableFile& file) {
        sqlite3_open((m_folder.path() + QStringLiteral("/plain.db")).toUtf8().constData(), &m_db);
        run("pragma journal_mode=off; pragma cache_size=-32000;");
        run("create table tuote (id integer primary key, numero text, rest1 blob, nimi text, nimi2 "
            "text, rest2 blob)");
        run("begin");
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(m_db, "insert into tuote values (null, ?, ?, ?, ?, ?)", -1, &insert,
                           nullptr);
        const data::RecordLayout& layout = file.layout();
        const int number = layout.indexOf(QStringLiteral("NUMERO"));
        const int name = layout.indexOf(QStringLiteral("NIMI"));
        const int second = layout.indexOf(QStringLiteral("NIMI2"));
        std::optional<data::StoredRecord> at;
        do {
            at = file.visit(0, at, data::Direction::Forward, 4096,
                            [&](data::RecordId, const QByteArray& bytes) {
                                const auto* raw = reinterpret_cast<const uchar*>(bytes.data());
                                bindText(insert, 1, data::readText(layout.field(number), raw));
                                const int rest = layout.recordLength() -
                                                 layout.field(number).storedLength -
                                                 layout.field(name).storedLength -
                                                 layout.field(second).storedLength;
                                sqlite3_bind_blob(insert, 2, raw, rest / 2, SQLITE_TRANSIENT);
                                bindText(insert, 3, data::readText(layout.field(name), raw));
                                bindText(insert, 4, data::readText(layout.field(second), raw));
                                sqlite3_bind_blob(insert, 5, raw, rest / 2, SQLITE_TRANSIENT);
                                sqlite3_step(insert);
                                sqlite3_reset(insert);
                                return true;
                            });
        } while (at);
        sqlite3_finalize(insert);
        run("commit");
    }
    ~PlainTable() { sqlite3_close(m_db); }
    PlainTable(const PlainTable&) = delete;
    PlainTable& operator=(const PlainTable&) = delete;

    qint64 like(const QString& text, bool bothNames) {
        sqlite3_stmt* select = nullptr;
        sqlite3_prepare_v2(m_db,
                           bothNames ? "select id from tuote where nimi like ?1 or nimi2 like ?1"
                                     : "select id from tuote where nimi like ?1",
                           -1, &select, nullptr);
        bindText(select, 1, QLatin1Char('%') + text + QLatin1Char('%'));
        qint64 found = 0;
        while (sqlite3_step(select) == SQLITE_ROW)
            ++found;
        sqlite3_finalize(select);
        return found;
    }

  private:
    void run(const char* sql) { sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr); }
    static void bindText(sqlite3_stmt* statement, int index, const QString& text) {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(statement, index, utf8.constData(), static_cast<int>(utf8.size()),
                          SQLITE_TRANSIENT);
    }

    QTemporaryDir m_folder;
    sqlite3* m_db = nullptr;
};

void grab(const QString& folder, const QString& name, search::TBtrHakuForm& form) {
    idle(form);
    form.grab().save(QDir(folder).filePath(name));
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2 || !company::takeIntoUse(arguments[1])) {
        std::fprintf(stderr, "usage: search_bench COMPANY [--grab FOLDER]\n");
        return 2;
    }
    data::Database& database = company::companyDatabase();
    const std::unique_ptr<data::TableFile> file = database.openTable(QStringLiteral("TUOTE"));
    const qint64 products = file->recordCount();
    std::printf("%lld products\n", static_cast<long long>(products));
    {
        // Loading fonts and styles is not part of the measured time.
        search::TArHakuForm warm;
        warm.show();
        QTest::qWait(50);
    }
    const qint64 memoryBefore = anonymousKb();

    double cpu = cpuMs();
    double wall = wallMs();
    auto* form = new search::TTuoteHakuForm;
    form->setAttribute(Qt::WA_DeleteOnClose, false);
    form->resize(1000, 700);
    form->show();
    QCoreApplication::sendPostedEvents();
    form->grab();
    std::printf("open to first painted rows      %8.1f ms cpu  %8.1f ms\n", cpuMs() - cpu,
                wallMs() - wall);
    cpu = cpuMs();
    wall = wallMs();
    idle(*form);
    std::printf("idle work until the count       %8.1f ms cpu  %8.1f ms\n", cpuMs() - cpu,
                wallMs() - wall);

    std::mt19937 random(7);
    std::vector<QString> numbers;
    const search::ViewRows& rows = form->model().rows();
    for (int i = 0; i < 200; ++i) {
        const auto record =
            form->model().record(static_cast<int>(random() % static_cast<unsigned>(rows.count())));
        numbers.push_back(search::GridRow(file->layout(), *record).text(QStringLiteral("NUMERO")));
    }
    const int screen = form->DBGrid1->viewport()->height() / form->DBGrid1->rowHeight(0);
    std::vector<double> raw;
    std::vector<double> nearest;
    for (const QString& number : numbers) {
        raw.push_back(timed([&] {
            auto records = file->seek(0, data::SeekOp::GreaterOrEqual, {number.left(6)}, screen);
            Q_UNUSED(records)
        }));
        nearest.push_back(timed([&] { form->model().nearest({number.left(6)}); }));
    }
    std::printf(
        "nearest search                  %8.3f ms, raw read of %d rows %8.3f ms: ratio %.2f\n",
        median(nearest), screen, median(raw), median(nearest) / median(raw));

    QScrollBar* bar = form->DBGrid1->verticalScrollBar();
    std::vector<double> jumps;
    for (int i = 0; i < 60; ++i) {
        const int to = static_cast<int>(random() % static_cast<unsigned>(bar->maximum() + 1));
        jumps.push_back(timed([&] {
            bar->setValue(to);
            form->DBGrid1->viewport()->grab();
        }));
    }
    std::printf("jump by the scroll bar          %8.2f ms median, %8.2f ms worst (painted)\n",
                median(jumps), *std::max_element(jumps.begin(), jumps.end()));

    constexpr int kPairs = 5;
    std::vector<double> search;
    std::vector<double> like[2];  // by one name, by both
    std::vector<double> ratios[2];
    qint64 plainFound[2] = {};
    int found = 0;
    {
        PlainTable plain(*file);
        for (int i = 0; i < kPairs; ++i) {
            form->NollaaSuodin();
            idle(*form);
            search.push_back(processorTimed([&] {
                form->dropText(QStringLiteral("*kahvi"),
                               form->model().columnOf(QStringLiteral("NIMI")));
            }));
            found = form->model().rowCount();
            for (const int both : {0, 1}) {
                like[both].push_back(processorTimed(
                    [&] { plainFound[both] = plain.like(QStringLiteral("kahvi"), both == 1); }));
                ratios[both].push_back(like[both].back() / search.back());
            }
        }
    }
    std::printf("search record by record         %8.1f ms cpu (%d rows)\n", median(search), found);
    for (const int both : {0, 1})
        std::printf("  LIKE scan of %s    %8.1f ms cpu (%lld rows): %.2f of its rows per second\n",
                    both == 1 ? "two names" : "the name ", median(like[both]),
                    static_cast<long long>(plainFound[both]), median(ratios[both]));
    form->Suodatin->setText(QStringLiteral("x"));
    form->Suodatin->clear();
    std::vector<double> early;
    for (int i = 0; i < 20; ++i) {
        form->NollaaSuodin();  // makes the count unknown again
        const int to = static_cast<int>(random() % static_cast<unsigned>(bar->maximum() + 1));
        early.push_back(timed([&] {
            bar->setValue(to);
            form->DBGrid1->viewport()->grab();
        }));
    }
    std::printf("jump before the count is known  %8.2f ms median, %8.2f ms worst (painted)\n",
                median(early), *std::max_element(early.begin(), early.end()));
    idle(*form);
    std::printf("growth of anonymous memory      %8.1f MB\n",
                static_cast<double>(anonymousKb() - memoryBefore) / 1024);

    const qsizetype option = arguments.indexOf(QStringLiteral("--grab"));
    if (option > 0 && option + 1 < arguments.size()) {
        const QString folder = arguments[option + 1];
        form->NollaaSuodin();
        grab(folder, QStringLiteral("tuotehaku.png"), *form);
        const auto saveScreenshot = [&folder](search::TBtrHakuForm* window, const QString& name) {
            window->show();
            grab(folder, name, *window);
            delete window;
        };
        saveScreenshot(new search::TTrHakuForm, QStringLiteral("tuoteryhmahaku.png"));
        saveScreenshot(new search::TPrHakuForm, QStringLiteral("paaryhmahaku.png"));
        saveScreenshot(new search::TArHakuForm, QStringLiteral("aliryhmahaku.png"));
    }
    delete form;
    company::TZavDbConnectionModule::shutDown();
    return 0;
}
