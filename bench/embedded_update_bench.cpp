// Compares the embedded engine with an ordinary SQLite table that has as many columns as TUOTE has
// fields, read and written by plain calls with the same durability.
//
//   embedded_update_bench [products] [updates]

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>

#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "engines/sqlite/sqlite_handle.h"

using namespace data;

namespace {

struct Timing {
    double seconds = 0;
    double cpu = 0;
};

Timing timed(const std::function<void()>& body) {
    const std::clock_t cpu = std::clock();
    const auto start = std::chrono::steady_clock::now();
    body();
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC};
}

void report(const char* what, const Timing& engine, const Timing& plain) {
    std::printf(
        "%-44s engine %8.3f s (cpu %7.3f)  plain %8.3f s (cpu %7.3f)  ratio %5.2f (cpu %5.2f)\n",
        what, engine.seconds, engine.cpu, plain.seconds, plain.cpu, engine.seconds / plain.seconds,
        engine.cpu / plain.cpu);
}

QString productNumber(int i) {
    return QStringLiteral("T%1").arg(i, 8, 10, QLatin1Char('0'));
}

const char* const kPrices[] = {"HINTA",  "KAKSOISHINTA", "HINTA3", "HINTA4", "HINTA5",
                               "HINTA6", "HINTA7",       "HINTA8", "HINTA9"};

QString priceUpdate() {
    QStringList set;
    for (int i = 0; i < 9; ++i)
        set.append(QStringLiteral("%1 = :HINTA%2").arg(QLatin1String(kPrices[i])).arg(i + 1));
    return QStringLiteral("UPDATE TUOTE SET %1 WHERE NUMERO = :TUOTENRO").arg(set.join(", "));
}

void fillEngine(Database& db, int products) {
    const auto file = db.openTable(QStringLiteral("TUOTE"));
    const RecordLayout& layout = file->layout();
    QByteArray record(layout.recordLength(), '\0');
    const auto set = [&](const char* name, const Value& value) {
        writeValue(layout.field(layout.indexOf(QLatin1String(name))),
                   reinterpret_cast<uchar*>(record.data()), value, layout.tableName());
    };
    db.inTransaction([&] {
        for (int i = 0; i < products; ++i) {
            set("NUMERO", productNumber(i));
            set("NIMI", QStringLiteral("Tuote numero %1").arg(i));
            set("RYHMA", i % 200);
            set("LVV", i % 3);
            for (const char* price : kPrices)
                set(price, 1.24 + i % 1000);
            QByteArray copy = record;
            file->insert(copy);
        }
    });
}

// TUOTE as an ordinary SQLite table with the same keys.
engines::sqlite::SqliteHandle makePlain(const QString& fileName, const TableSource& source,
                                        int products) {
    engines::sqlite::SqliteHandle handle(fileName, engines::sqlite::SqliteHandle::Mode::Create);
    engines::sqlite::execute(
        handle.get(),
        "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA wal_autocheckpoint "
        "= 4000; PRAGMA cache_size = -32000; PRAGMA "
        "secure_delete = OFF");
    QByteArray columns;
    QByteArray values;
    for (const TFieldCacheItem& field : source.fields) {
        const bool text = field.kind() == Kind::String || field.kind() == Kind::Date ||
                          field.kind() == Kind::Time;
        columns += (columns.isEmpty() ? "" : ", ") + engines::sqlite::quotedName(field.name) +
                   (text                          ? " TEXT DEFAULT ''"
                    : field.kind() == Kind::Float ? " REAL DEFAULT 0"
                                                  : " INTEGER DEFAULT 0");
    }
    engines::sqlite::execute(handle.get(), "CREATE TABLE TUOTE(" + columns + ")");
    engines::sqlite::execute(
        handle.get(),
        "CREATE UNIQUE INDEX k0 ON TUOTE(NUMERO); CREATE INDEX k1 ON TUOTE(NUMERO "
        "COLLATE NOCASE); CREATE INDEX k2 ON TUOTE(RYHMA, NUMERO); CREATE INDEX k3 ON "
        "TUOTE(PAARYHMA, NUMERO); CREATE INDEX k4 ON TUOTE(TOIMITTAJA, TOIMTUNNUS); "
        "CREATE INDEX k5 ON TUOTE(NIMI COLLATE NOCASE); CREATE INDEX k6 ON "
        "TUOTE(AliRyhma, NUMERO); BEGIN");
    engines::sqlite::Statement insert(
        handle.get(),
        "INSERT INTO TUOTE(NUMERO, NIMI, RYHMA, LVV, HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, "
        "HINTA6, HINTA7, HINTA8, HINTA9) VALUES (?1, ?2, ?3, ?4, ?5, ?5, ?5, ?5, ?5, ?5, ?5, ?5, "
        "?5)");
    for (int i = 0; i < products; ++i) {
        insert.bindText(1, productNumber(i));
        insert.bindText(2, QStringLiteral("Tuote numero %1").arg(i));
        insert.bind(3, i % 200);
        insert.bind(4, i % 3);
        sqlite3_bind_double(insert.get(), 5, 1.24 + i % 1000);
        insert.run();
    }
    engines::sqlite::execute(handle.get(), "COMMIT");
    return handle;
}

void updateEngine(Database& db, const std::vector<int>& order) {
    for (const int i : order) {
        const auto update = db.prepare(priceUpdate());
        for (int level = 1; level <= 9; ++level)
            update->bind(QStringLiteral("HINTA%1").arg(level), 2.5 + i + level);
        update->bind(QStringLiteral("TUOTENRO"), productNumber(i));
        if (update->execute() != 1)
            throw std::runtime_error("a product was not found");
    }
}

void updatePlain(sqlite3* db, const std::vector<int>& order) {
    engines::sqlite::Statement update(db, priceUpdate().toUtf8());
    for (const int i : order) {
        for (int level = 1; level <= 9; ++level)
            sqlite3_bind_double(update.get(), level, 2.5 + i + level);
        update.bindText(10, productNumber(i));
        update.run();
    }
}

qint64 textLengthEngine(Database& db, const QString& sql) {
    const auto statement = db.prepare(sql);
    qint64 length = 0;
    while (statement->step())
        length += statement->value(0).toString().size();
    return length;
}

qint64 textLengthPlain(sqlite3* db, const QString& sql) {
    engines::sqlite::Statement statement(db, sql.toUtf8());
    qint64 length = 0;
    while (statement.step())
        length += statement.text(0).size();
    return length;
}

void readEngine(Database& db, const std::vector<int>& order) {
    const auto file = db.openTable(QStringLiteral("TUOTE"));
    for (const int i : order) {
        const auto found = file->seek(0, SeekOp::Equal, {productNumber(i)}, 1);
        if (found.empty())
            throw std::runtime_error("a product was not found");
    }
}

void readPlain(sqlite3* db, const std::vector<int>& order) {
    engines::sqlite::Statement select(db, "SELECT * FROM TUOTE WHERE NUMERO = ?1");
    const int columns = sqlite3_column_count(select.get());
    for (const int i : order) {
        select.bindText(1, productNumber(i));
        if (!select.step())
            throw std::runtime_error("a product was not found");
        for (int c = 0; c < columns; ++c)
            sqlite3_column_text(select.get(), c);
        select.reset();
    }
}

TableSource productSource() {
    for (const TableSource& source : allTableSources()) {
        if (source.name == QLatin1String("TUOTE"))
            return source;
    }
    throw std::runtime_error("no product table");
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int products = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int updates = argc > 2 ? std::atoi(argv[2]) : 20000;
    const QTemporaryDir folder;
    engines::createEmbedded(folder.path(), allTableSources());
    auto db = engines::openEmbedded(QStringLiteral("KOE"), folder.path());
    engines::sqlite::SqliteHandle plain;
    const Timing fill = timed([&] { fillEngine(*db, products); });
    const Timing plainFill = timed([&] {
        plain = makePlain(folder.filePath(QStringLiteral("plain.db")), productSource(), products);
    });
    report("insert in one transaction", fill, plainFill);

    std::mt19937 random(1);
    std::vector<int> order;
    for (int i = 0; i < updates; ++i)
        order.push_back(static_cast<int>(random() % static_cast<unsigned>(products)));
    // Alternating, so that disk variations affect both equally.
    Timing engine, other;
    for (size_t from = 0; from < order.size(); from += order.size() / 10 + 1) {
        const size_t to = std::min(order.size(), from + order.size() / 10 + 1);
        const std::vector<int> part(order.begin() + static_cast<std::ptrdiff_t>(from),
                                    order.begin() + static_cast<std::ptrdiff_t>(to));
        const Timing a = timed([&] { updateEngine(*db, part); });
        const Timing b = timed([&] { updatePlain(plain.get(), part); });
        engine = {engine.seconds + a.seconds, engine.cpu + a.cpu};
        other = {other.seconds + b.seconds, other.cpu + b.cpu};
    }
    report("update nine prices by number, autocommit", engine, other);
    report("read record by number", timed([&] { readEngine(*db, order); }),
           timed([&] { readPlain(plain.get(), order); }));
    const QString scan =
        QStringLiteral("SELECT NUMERO, HINTA, LVV FROM TUOTE WHERE lvv = 2 OR alv2 = 2");
    report("scan by tax class", timed([&] { textLengthEngine(*db, scan); }),
           timed([&] { textLengthPlain(plain.get(), scan); }));
    const QString all = QStringLiteral("SELECT * FROM TUOTE WHERE RYHMA = 7 ORDER BY NUMERO");
    report("one group with all columns", timed([&] { textLengthEngine(*db, all); }),
           timed([&] { textLengthPlain(plain.get(), all); }));
    db.reset();
    report("open and find one row", timed([&] {
               engines::openEmbedded(QStringLiteral("KOE"), folder.path())
                   ->prepare(QStringLiteral("SELECT NIMI FROM TUOTE WHERE NUMERO = 'T00000001'"))
                   ->step();
           }),
           timed([&] {
               const engines::sqlite::SqliteHandle fresh(
                   folder.filePath(QStringLiteral("plain.db")),
                   engines::sqlite::SqliteHandle::Mode::ReadWrite);
               engines::sqlite::Statement(fresh.get(),
                                          "SELECT NIMI FROM TUOTE WHERE NUMERO = 'T00000001'")
                   .step();
           }));
    return 0;
}
