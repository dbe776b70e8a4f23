// Measures the products step with its SQL on a server, through an ODBC data source. The records
// that the step locks and reads come from an embedded company, in place of the client library and a
// local server.
//   odbc_run DATA-SOURCE FOLDER PRODUCTS   creates the tables and the company
//   odbc_run DATA-SOURCE FOLDER            runs the step and prints its time in seconds

#include <QElapsedTimer>
#include <cstdio>

#include "bench/run_bench.h"
#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "engines/shops/odbc_connection.h"
#include "tools/zavdb/demo/demo_company.h"
#include "vatchange/run/change_run.h"

namespace {

class Company : public data::Database {
  public:
    Company(const QString& dataSource, const QString& folder)
        : m_records(engines::openEmbedded(QStringLiteral("KOE"), folder)) {
        engines::shops::OdbcSettings settings;
        settings.dataSource = dataSource;
        m_sql = engines::shops::OdbcConnection::connect(settings);
    }
    QString name() const override { return m_records->name(); }
    QStringList tableNames() override { return m_records->tableNames(); }
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        return m_records->openTable(tableName);
    }
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override {
        return m_sql->prepare(sql);
    }
    void setLockWait(std::chrono::milliseconds wait) override { m_sql->setLockWait(wait); }
    bool beginRun() override { return m_records->beginRun(); }
    void endRun() override { m_records->endRun(); }
    void inTransaction(const std::function<void()>& body) override { m_sql->inTransaction(body); }
    data::Database& records() { return *m_records; }

  private:
    std::unique_ptr<data::Database> m_records;
    std::unique_ptr<engines::shops::OdbcConnection> m_sql;
};

// The columns that the products step uses, filled from the demo company; all products in class 1.
void fill(Company& company) {
    const QString prices = QStringLiteral(
        "HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, HINTA6, HINTA7, HINTA8, HINTA9, KESKIHINTA, "
        "VIIMOSTOHINTA, ANNOSHINTA");
    QString columns = prices;
    columns.replace(QLatin1String(","), QLatin1String(" DOUBLE PRECISION,"));
    try {
        bench::exec(company, QStringLiteral("DROP TABLE TUOTE"));
    } catch (const data::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    bench::exec(company,
                QStringLiteral("CREATE TABLE TUOTE (NUMERO VARCHAR(18) NOT NULL PRIMARY KEY, %1 "
                               "DOUBLE PRECISION, LVV SMALLINT, ALV2 SMALLINT, OSTOVERO SMALLINT, "
                               "HRKPL SMALLINT, VERKKOKAUPPA SMALLINT, MUUTETTUPVM DATE, "
                               "MUUTETTUTIME TIME)")
                    .arg(columns));
    data::TUniQuery read(&company.records());
    read.sql().setText(QStringLiteral("select NUMERO, %1 from TUOTE").arg(prices));
    data::TUniQuery write(&company);
    QString places = prices;
    places.replace(QLatin1String(", "), QLatin1String(", :"));
    write.sql().setText(QStringLiteral("INSERT INTO TUOTE (NUMERO, %1, LVV, ALV2, OSTOVERO, HRKPL, "
                                       "VERKKOKAUPPA) VALUES (:NUMERO, :%2, 1, 0, 0, 0, 0)")
                            .arg(prices, places));
    company.inTransaction([&] {
        for (read.open(); !read.eof(); read.next()) {
            for (const QString& name : read.fieldNames())
                write.paramByName(name).setValue(read.fieldByName(name).value());
            write.execSql();
        }
    });
}

vatchange::ChangeDefinition definition() {
    vatchange::ChangeDefinition made;
    made.sourceClass = 1;
    made.targetClass = 5;
    for (size_t i = 0; i < made.levels.size(); ++i)
        made.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], false};
    made.writeShelfLabels = false;
    made.leaveWebShop = true;
    return made;
}

// The other tables that a run uses on the server.
void makeOtherTables(Company& company) {
    for (const char* sql :
         {"CREATE TABLE ALVKANTA (luokka SMALLINT, Prosentti REAL)",
          "INSERT INTO ALVKANTA VALUES (1, 24)", "INSERT INTO ALVKANTA VALUES (5, 25.5)",
          "CREATE TABLE TRYHMA (nro INTEGER, VERO SMALLINT, ALV2 SMALLINT, OSTOVERO SMALLINT, "
          "MUUTOSPVM DATE, MUUTOSKLO TIME)",
          "CREATE TABLE HR (tyyppi SMALLINT, tuote VARCHAR(18), maara DOUBLE PRECISION)",
          "CREATE TABLE x$file (xf$id INTEGER, xf$name VARCHAR(20))"})
        bench::exec(company, QLatin1String(sql));
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "odbc_run DATA-SOURCE FOLDER [PRODUCTS]\n");
        return 2;
    }
    try {
        const QString source = QString::fromLocal8Bit(arguments[1]);
        const QString folder = QString::fromLocal8Bit(arguments[2]);
        if (count > 3) {
            engines::createEmbedded(folder, data::allTableSources());
            Company company(source, folder);
            tools::demo::fill(company.records(), {std::atoi(arguments[3]), 1},
                              [](const QString&, qint64) {});
            bench::exec(company.records(),
                        QStringLiteral("update TUOTE set LVV=1, ALV2=0, OSTOVERO=0"));
            makeOtherTables(company);
            fill(company);
            return 0;
        }
        Company company(source, folder);
        bench::exec(company, QStringLiteral("UPDATE TUOTE SET LVV=1"));
        bench::SilentPorts ports;
        QElapsedTimer timer;
        timer.start();
        const vatchange::RunResult result = vatchange::runChange(company, definition(), ports);
        const double seconds = static_cast<double>(timer.elapsed()) / 1000;
        std::printf("run: %lld products, %.3f s\n", static_cast<long long>(result.products),
                    seconds);
        return result.clean() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
