// Compares a run that converts open sales orders, journal and verification included, with a plain
// program that reads and rewrites the same rows and headers by key in ordinary SQLite tables with
// one flush a commit. Prints both times and their ratio, and the ratio without the processor time
// of a verification alone. Usage: orders_bench [ORDERS [ROWS_PER_ORDER [FOLDER]]]; slow_disk.c
// simulates a disk.
#include <sqlite3.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "bench/run_bench.h"
#include "data/dictionary/dictionary_source.h"
#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "vatchange/journal/verification.h"
#include "vatchange/orders/order_rules.h"
#include "vatchange/rules/rounding.h"
#include "vatchange/run/change_run.h"

namespace {

constexpr int kSourceClass = 3;
constexpr int kTargetClass = 4;
constexpr double kTargetRate = 25.5;

double anonymousMegabytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("RssAnon:"))
            return line.mid(8).trimmed().split(' ').first().toDouble() / 1024;
    return 0;
}

struct Size {
    int orders;
    int rows;
};

double price(int order, int row) {
    return 1.0 + (order * 37 + row * 101) % 20000 / 100.0;
}

class Filler {
  public:
    Filler(data::Database& database, const char* table)
        : m_file(database.openTable(QString::fromLatin1(table))),
          m_bytes(m_file->layout().recordLength(), '\0') {}

    void set(const char* field, const data::Value& value) {
        const data::RecordLayout& layout = m_file->layout();
        data::writeValue(layout.field(layout.indexOf(QString::fromLatin1(field))),
                         reinterpret_cast<uchar*>(m_bytes.data()), value, layout.tableName());
    }
    void store() { m_file->insert(m_bytes); }

  private:
    std::unique_ptr<data::TableFile> m_file;
    QByteArray m_bytes;
};

void fillEmbedded(data::Database& database, Size size) {
    database.inTransaction([&] {
        Filler vatClass(database, "ALVKANTA");
        for (const auto& [number, rate] :
             {std::pair(kSourceClass, 24.0), std::pair(kTargetClass, kTargetRate)}) {
            vatClass.set("luokka", number);
            vatClass.set("Prosentti", rate);
            vatClass.store();
        }
        Filler header(database, "MT");
        Filler row(database, "MTRIVI");
        row.set("Verokanta", kSourceClass);
        row.set("OstoVero", kSourceClass);
        row.set("Maara", 3.0);
        row.set("Toimitettava", 3.0);
        row.set("Ostohinta", 0.5);
        row.set("Nimi", QStringLiteral("Kahvi, tumma paahto 500 g"));
        for (int order = 1; order <= size.orders; ++order) {
            header.set("Numero", order);
            header.set("AsiakasNimi", QStringLiteral("Kyläkauppa Oy"));
            header.store();
            for (int r = 1; r <= size.rows; ++r) {
                row.set("TilausNro", order);
                row.set("RiviNro", r);
                row.set("Tuote", QString::number(100000 + (order * 7 + r) % 5000));
                row.set("Ahinta", price(order, r) * 1.24);
                row.set("AhintaAlv0", price(order, r));
                row.store();
            }
        }
    });
}

struct Measured {
    double seconds = 0;
    double processor = 0;  // seconds
    double megabytes = 0;  // maximum
};

class Stopwatch {
  public:
    Stopwatch() { m_timer.start(); }
    void stop(Measured& measured) const {
        measured.seconds = static_cast<double>(m_timer.nsecsElapsed()) / 1e9;
        measured.processor = static_cast<double>(std::clock() - m_clock) / CLOCKS_PER_SEC;
    }

  private:
    QElapsedTimer m_timer;
    std::clock_t m_clock = std::clock();
};

class MeasuringPorts : public bench::SilentPorts {
  public:
    explicit MeasuringPorts(Measured& measured) : m_measured(measured) {}

    void progress(qint64 done, qint64) override {
        if (done % 1000 == 0)
            m_measured.megabytes = std::max(m_measured.megabytes, anonymousMegabytes());
    }

  private:
    Measured& m_measured;
};

Measured convertEmbedded(data::Database& database, Measured& verification) {
    Measured measured;
    vatchange::LoadedDefinition loaded;
    vatchange::ChangeDefinition& definition = loaded.definition;
    definition.sourceClass = kSourceClass;
    definition.targetClass = kTargetClass;
    definition.products = false;
    definition.salesOrders = true;
    definition.salesOrderFromVat0 = true;
    MeasuringPorts ports(measured);
    const Stopwatch watch;
    const vatchange::RunResult result = vatchange::runChange(database, loaded, ports);
    watch.stop(measured);
    if (!result.clean()) {
        std::fprintf(stderr, "the run failed\n");
        std::exit(1);
    }
    const Stopwatch again;
    vatchange::verifyRun(database, result.run);
    again.stop(verification);
    return measured;
}

class Ordinary {
  public:
    explicit Ordinary(const QString& file) {
        check(sqlite3_open(file.toUtf8().constData(), &m_db));
        run("PRAGMA page_size=4096; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"
            "PRAGMA wal_autocheckpoint=4000; PRAGMA mmap_size=1073741824; PRAGMA "
            "cache_size=-32000");
    }
    ~Ordinary() { sqlite3_close(m_db); }
    Ordinary(const Ordinary&) = delete;
    Ordinary& operator=(const Ordinary&) = delete;

    void run(const std::string& sql) {
        check(sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr));
    }
    sqlite3_stmt* prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(m_db, sql, -1, &statement, nullptr));
        return statement;
    }
    void write(sqlite3_stmt* statement) {
        check(sqlite3_step(statement));
        check(sqlite3_reset(statement));
    }
    void check(int code) {
        if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE)
            return;
        std::fprintf(stderr, "%s\n", sqlite3_errmsg(m_db));
        std::exit(1);
    }

  private:
    sqlite3* m_db = nullptr;
};

void createOrdinaryTable(Ordinary& db, const data::TableSource& table) {
    std::string columns;
    for (const data::TFieldCacheItem& field : table.fields) {
        const bool text = field.kind() == data::Kind::String || field.kind() == data::Kind::Date ||
                          field.kind() == data::Kind::Time;
        columns += columns.empty() ? "" : ", ";
        columns += field.name.toStdString();
        columns +=
            text ? " TEXT DEFAULT ''"
                 : (field.kind() == data::Kind::Float ? " REAL DEFAULT 0" : " INTEGER DEFAULT 0");
    }
    const std::string name = table.name.toStdString();
    db.run("CREATE TABLE " + name + " (" + columns + ")");
    for (const data::KeySource& key : table.keys) {
        std::string sql = key.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
        sql += name;
        sql += std::to_string(key.number);
        sql += " ON ";
        sql += name;
        sql += " (";
        sql += key.fields.join(QStringLiteral(",")).toStdString();
        sql += ")";
        db.run(sql);
    }
}

void fillOrdinary(Ordinary& db, Size size) {
    for (const data::TableSource& table : data::allTableSources())
        if (table.name == QLatin1String("MT") || table.name == QLatin1String("MTRIVI"))
            createOrdinaryTable(db, table);
    db.run("BEGIN");
    sqlite3_stmt* header =
        db.prepare("INSERT INTO MT (Numero, AsiakasNimi) VALUES (?, 'Kyläkauppa Oy')");
    sqlite3_stmt* row = db.prepare(
        "INSERT INTO MTRIVI (TilausNro, RiviNro, Tuote, Nimi, Verokanta, OstoVero, Maara, "
        "Toimitettava, Ostohinta, Ahinta, AhintaAlv0) "
        "VALUES (?, ?, ?, 'Kahvi, tumma paahto 500 g', 3, 3, 3, 3, 0.5, ?, ?)");
    for (int order = 1; order <= size.orders; ++order) {
        sqlite3_bind_int(header, 1, order);
        db.write(header);
        for (int r = 1; r <= size.rows; ++r) {
            sqlite3_bind_int(row, 1, order);
            sqlite3_bind_int(row, 2, r);
            sqlite3_bind_text(row, 3, std::to_string(100000 + (order * 7 + r) % 5000).c_str(), -1,
                              SQLITE_TRANSIENT);
            sqlite3_bind_double(row, 4, price(order, r) * 1.24);
            sqlite3_bind_double(row, 5, price(order, r));
            db.write(row);
        }
    }
    sqlite3_finalize(header);
    sqlite3_finalize(row);
    db.run("COMMIT");
}

struct PlainRow {
    int number;
    double price, vat0, purchase, quantity;
};

Measured convertOrdinary(Ordinary& db) {
    const Stopwatch watch;
    const double factor = 1 + kTargetRate / 100;
    std::vector<int> orders;
    sqlite3_stmt* list = db.prepare("SELECT Numero FROM MT WHERE MT.Toimitustila <= 3");
    while (sqlite3_step(list) == SQLITE_ROW)
        orders.push_back(sqlite3_column_int(list, 0));
    sqlite3_finalize(list);
    sqlite3_stmt* header = db.prepare("SELECT Veloitustapa FROM MT WHERE Numero = ?");
    sqlite3_stmt* rows = db.prepare(
        "SELECT RiviNro, Verokanta, Toimitettava, AhintaAlv0, Ostohinta, Maara FROM MTRIVI "
        "WHERE TilausNro = ? ORDER BY RiviNro");
    sqlite3_stmt* setRow = db.prepare(
        "UPDATE MTRIVI SET Verokanta = ?, OstoVero = ?, Ostohinta = ?, OstohintaAlv0 = ?, "
        "Ahinta = ?, Netto = ?, Kate = ?, KateAlv0 = ? WHERE TilausNro = ? AND RiviNro = ?");
    sqlite3_stmt* setHeader = db.prepare(
        "UPDATE MT SET Summa = ?, Kate = ?, SummaAlv0 = ?, KateAlv0 = ? WHERE Numero = ?");
    std::vector<PlainRow> found;
    for (const int order : orders) {
        sqlite3_bind_int(header, 1, order);
        const bool skip = sqlite3_step(header) != SQLITE_ROW || sqlite3_column_int(header, 0) == 14;
        sqlite3_reset(header);
        if (skip)
            continue;
        found.clear();
        sqlite3_bind_int(rows, 1, order);
        while (sqlite3_step(rows) == SQLITE_ROW)
            if (sqlite3_column_int(rows, 1) == kSourceClass && sqlite3_column_double(rows, 2) != 0)
                found.push_back({sqlite3_column_int(rows, 0), 0, sqlite3_column_double(rows, 3),
                                 sqlite3_column_double(rows, 4), sqlite3_column_double(rows, 5)});
        sqlite3_reset(rows);
        double sums[4] = {};
        for (const PlainRow& row : found) {
            const double gross = vatchange::roundHalfAway(row.vat0 * factor, 2);
            const double net = vatchange::roundBankers(gross * row.quantity, 2);
            const double purchase0 = row.purchase / factor;
            const double margin = net - row.quantity * row.purchase;
            const double margin0 = row.quantity * (row.vat0 - purchase0);
            sqlite3_bind_int(setRow, 1, kTargetClass);
            sqlite3_bind_int(setRow, 2, kTargetClass);
            sqlite3_bind_double(setRow, 3, row.purchase);
            sqlite3_bind_double(setRow, 4, purchase0);
            sqlite3_bind_double(setRow, 5, gross);
            sqlite3_bind_double(setRow, 6, net);
            sqlite3_bind_double(setRow, 7, margin);
            sqlite3_bind_double(setRow, 8, margin0);
            sqlite3_bind_int(setRow, 9, order);
            sqlite3_bind_int(setRow, 10, row.number);
            db.write(setRow);
            sums[0] += net;
            sums[1] += margin;
            sums[2] += row.vat0 * row.quantity;
            sums[3] += margin0;
        }
        for (int i = 0; i < 4; ++i)
            sqlite3_bind_double(setHeader, i + 1, sums[i]);
        sqlite3_bind_int(setHeader, 5, order);
        db.write(setHeader);
    }
    for (sqlite3_stmt* statement : {header, rows, setRow, setHeader})
        sqlite3_finalize(statement);
    Measured measured;
    watch.stop(measured);
    return measured;
}

}  // namespace

int main(int argc, char** argv) {
    const Size size{argc > 1 ? std::atoi(argv[1]) : 20000, argc > 2 ? std::atoi(argv[2]) : 5};
    if (size.orders <= 0 || size.rows <= 0) {
        std::fprintf(stderr, "usage: orders_bench [ORDERS [ROWS_PER_ORDER [FOLDER]]]\n");
        return 2;
    }
    const QString base = argc > 3 ? QString::fromLocal8Bit(argv[3]) : QDir::tempPath();
    const QTemporaryDir folder(base + QStringLiteral("/orders_bench.XXXXXX"));
    if (!folder.isValid()) {
        std::fprintf(stderr, "%s\n", folder.errorString().toLocal8Bit().constData());
        return 1;
    }
    Measured plain;
    {
        Ordinary db(folder.filePath(QStringLiteral("ordinary.db")));
        fillOrdinary(db, size);
        plain = convertOrdinary(db);
    }
    const QString company = folder.filePath(QStringLiteral("company"));
    engines::createEmbedded(company, data::allTableSources());
    const auto database = engines::openEmbedded(QStringLiteral("bench"), company);
    fillEmbedded(*database, size);
    const double before = anonymousMegabytes();
    Measured verification;
    const Measured ours = convertEmbedded(*database, verification);
    std::printf("%d orders, %d rows; seconds: wall, processor\n", size.orders,
                size.orders * size.rows);
    std::printf(
        "plain program  %6.2f %6.2f\nrun            %6.2f %6.2f\nverification   %6.2f %6.2f\n"
        "ratio          %6.3f %6.2f, verification apart %.2f\n",
        plain.seconds, plain.processor, ours.seconds, ours.processor, verification.seconds,
        verification.processor, ours.seconds / plain.seconds, ours.processor / plain.processor,
        (ours.processor - verification.processor) / plain.processor);
    std::printf("anonymous memory %.0f MB before, at most %.0f MB\n", before, ours.megabytes);
    return 0;
}
