// Another program in the company of a folder, for the tests of two programs.
// usage: fault_child edit FOLDER SEED   edits records until its input ends; then prints for each
//                                       record "TABLE KEY EDITS"
//        fault_child run FOLDER         runs the definition; prints the products converted; exit
//                                       status 3 if another run is in progress
//        fault_child all FOLDER         runs the definition with all steps, or resumes its run
//        fault_child hold FOLDER KEY    locks a product until its input ends
#include <poll.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <thread>

#include "data/sql/uni_query.h"
#include "data/table/tb_table.h"
#include "tests/faults/two_programs.h"

namespace {

using namespace std::chrono_literals;

bool inputEnded() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) > 0;
}

void waitForEndOfInput() {
    while (!inputEnded())
        std::this_thread::sleep_for(1ms);
}

/// Increments a field that no run touches, in one table's records.
class Editor {
  public:
    Editor(data::Database& database, const char* table, const char* keyField, const char* field)
        : m_name(QString::fromLatin1(table)), m_field(QString::fromLatin1(field)) {
        m_table.setDatabase(&database);
        m_table.setDatabaseName(data::kDdfDatabase);
        m_table.setTableName(m_name);
        m_table.open();
        m_update.setConnection(&database);
        m_update.sql().add(QStringLiteral("update %1 set %2 = %2 + 1 where %3 = :key")
                               .arg(m_name, m_field, QString::fromLatin1(keyField)));
        for (; !m_table.eof(); m_table.next())
            m_keys.push_back(m_table.fieldByName(QString::fromLatin1(keyField)).value());
        m_table.first();
    }

    void editOne(std::mt19937& random) {
        const data::Value& key = m_keys[random() % m_keys.size()];
        const auto pause = [&random] {
            if (random() % 4 == 0)
                std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        };
        try {
            if (random() % 3 == 0) {
                m_update.paramByName(QStringLiteral("key")).setValue(key);
                m_edits[key.toString()] += m_update.execSql();
                return;
            }
            if (!m_table.findKey({key}) || !m_table.tryEdit(1000ms))
                return;
            pause();
            auto& field = m_table.fieldByName(m_field);
            field.setInteger(field.asInteger() + 1);
            pause();
            m_table.post();
            ++m_edits[key.toString()];
        } catch (const data::DataError& error) {
            m_table.cancel();
            if (error.kind() != data::ErrorKind::Locked)
                throw;
        }
    }

    void print() const {
        for (const auto& [key, edits] : m_edits)
            std::printf("%s %s %lld\n", qPrintable(m_name), qPrintable(key),
                        static_cast<long long>(edits));
    }

  private:
    QString m_name;
    QString m_field;
    data::TtbTable m_table;
    data::TUniQuery m_update;
    std::vector<data::Value> m_keys;
    std::map<QString, qint64> m_edits;
};

int edit(const QString& folder, unsigned seed) {
    const auto database = test::openCompany(folder);
    Editor products(*database, "TUOTE", "NUMERO", test::kProductCounter);
    Editor headers(*database, "MT", "Numero", test::kOrderCounter);
    std::mt19937 random(seed);
    while (!inputEnded())
        (random() % 4 == 0 ? headers : products).editOne(random);
    products.print();
    headers.print();
    return 0;
}

int run(const QString& folder) {
    const data::Clock::Override morning(test::changeMorning);
    test::RecordingPorts ports;
    const auto database = test::openCompany(folder);
    const vatchange::RunResult result = runChange(*database, test::doubling(3, 6), ports);
    if (result.refused)
        return 3;
    std::printf("%lld\n", static_cast<long long>(result.products));
    return result.clean() ? 0 : 1;
}

int all(const QString& folder) {
    const data::Clock::Override morning{test::changeMorning};
    test::LoggingPorts ports;
    const auto database = test::openCompany(folder);
    return test::runOrResume(*database, ports).clean() ? 0 : 1;
}

int hold(const QString& folder, const QString& key) {
    const auto database = test::openCompany(folder);
    const auto file = database->openTable(QStringLiteral("TUOTE"));
    const auto record = file->seek(0, data::SeekOp::Equal, {key}, 1);
    if (record.empty() || !file->lock(record.front().id, 5000ms))
        return 1;
    std::printf("held\n");
    std::fflush(stdout);
    waitForEndOfInput();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    try {
        if (arguments[1] == QLatin1String("edit") && argc == 4)
            return edit(arguments[2], arguments[3].toUInt());
        if (arguments[1] == QLatin1String("run"))
            return run(arguments[2]);
        if (arguments[1] == QLatin1String("all")) {
            test::useCompany(arguments[2]);
            return all(arguments[2]);
        }
        if (arguments[1] == QLatin1String("hold") && argc == 4)
            return hold(arguments[2], arguments[3]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 2;
}
