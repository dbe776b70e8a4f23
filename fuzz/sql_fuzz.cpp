// Any text as a SQL statement on a small company: refused, or run with parameter values. Afterwards
// every record is still listed under its keys' values; then the statement is undone.

#include <QTemporaryDir>
#include <cstring>
#include <set>

#include "data/record/record_codec.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/embedded_database.h"
#include "engines/embedded/sql_statement.h"
#include "engines/embedded/stored_table.h"
#include "engines/embedded/table_file.h"
#include "fuzz/fuzz.h"

namespace {

using namespace data;
using namespace engines::embedded;

constexpr int kMaxSteps = 300;  // of a thousand instructions each: stops joins of joins

const char* const kRows[] = {
    "insert into TUOTE (NUMERO, NIMI, HINTA, LVV, RYHMA) values ('100', 'Ämpäri', 12.9, 1, 7)",
    "insert into TUOTE (NUMERO, NIMI, HINTA, LVV, RYHMA) values ('101', '', -0.5, 2, 7)",
    "insert into TUOTE (NUMERO, HINTA, LVV, RYHMA, BIT1) values ('', 1e9, 1, 0, -1)",
    "insert into ALVKANTA (luokka, Prosentti, Selite) values (1, 24, 'Yleinen')",
    "insert into ALVKANTA (luokka, Prosentti) values (2, 14)",
    "insert into KAMPPANJA (Tuote, RiviNro, loppu) values ('100', 1, '2024-09-01')",
    "insert into KAMPPANJA (Tuote, RiviNro, loppu) values ('100', 1, '')",
    "insert into UUSIHINTA (Tuote, Pvm, Hinta1) values ('100', '2024-09-01', 3)",
    "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1) values (1, '100', 9.99)",
};
const char* const kTables[] = {"TUOTE", "ALVKANTA", "KAMPPANJA", "UUSIHINTA", "MYYMALAHINNAT"};

class Company {
  public:
    Company() {
        engines::createEmbedded(m_folder.path(), allTableSources());
        m_connection = std::make_shared<Connection>(companyFile(m_folder.path()));
        for (const char* row : kRows)
            EmbeddedSqlStatement(m_connection, QString::fromUtf8(row)).execute();
        m_connection->lockWait = std::chrono::milliseconds(0);
        sqlite3_progress_handler(
            m_connection->db(), 1000,
            [](void* steps) { return ++*static_cast<int*>(steps) > kMaxSteps ? 1 : 0; }, &m_steps);
        // a text of a gigabyte is not an engine fault
        sqlite3_limit(m_connection->db(), SQLITE_LIMIT_LENGTH, 1 << 20);
        sqlite3_limit(m_connection->db(), SQLITE_LIMIT_SQL_LENGTH, 1 << 16);
        m_before = contents();
    }

    void run(const QString& sql) {
        struct Undo {};
        m_steps = 0;
        try {
            m_connection->inTransaction([&] {
                try {
                    runStatement(sql);
                } catch (const DataError& error) {
                    require(!error.english().contains(u'\n'));
                }
                m_steps = INT_MIN;
                requireOrder();
                throw Undo();
            });
        } catch (const Undo&) {
            m_steps = INT_MIN;
        } catch (const DataError&) {  // stopped by the limit
            m_steps = INT_MIN;
        }
        require(contents() == m_before);
    }

  private:
    void runStatement(const QString& sql) {
        EmbeddedSqlStatement statement(m_connection, sql);
        const Value values[] = {Value(100), Value(QStringLiteral("100")), Value(1.5), Value()};
        size_t next = 0;
        for (const QString& name : statement.parameterNames())
            statement.bind(name, values[next++ % std::size(values)]);
        if (statement.columns().empty()) {
            require(statement.execute() >= 0);
            return;
        }
        for (int rows = 0; rows < 50 && statement.step(); ++rows) {
            for (size_t i = 0; i < statement.columns().size(); ++i)
                statement.value(static_cast<int>(i));
        }
    }

    // Each key lists every record once, in key order.
    void requireOrder() {
        for (const char* name : kTables) {
            StoredTable& table = m_connection->table(QLatin1String(name));
            EmbeddedTableFile records(m_connection, table);
            std::set<RecordId> stored;
            records.visitStored(std::nullopt, 1 << 20, [&](RecordId id, const QByteArray&) {
                stored.insert(id);
                return true;
            });
            for (const KeyDef& key : table.keys()) {
                std::set<RecordId> walked;
                QByteArray last;
                records.visit(
                    key.number, std::nullopt, Direction::Forward, 1 << 20,
                    [&](RecordId id, const QByteArray& bytes) {
                        const QByteArray image = table.image(key.number).build(bytes);
                        require(last.isEmpty() || last < image || (last == image && !key.unique));
                        last = image;
                        walked.insert(id);
                        return true;
                    });
                require(walked == stored);
            }
        }
    }

    QByteArray contents() {
        QByteArray all;
        for (const char* name : kTables) {
            EmbeddedTableFile records(m_connection, m_connection->table(QLatin1String(name)));
            records.visitStored(std::nullopt, 1 << 20, [&](RecordId id, const QByteArray& bytes) {
                all += QByteArray::number(id) + bytes;
                return true;
            });
        }
        return all;
    }

    QTemporaryDir m_folder;
    std::shared_ptr<Connection> m_connection;
    int m_steps = INT_MIN;
    QByteArray m_before;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1024)
        return 0;
    static Company company;
    company.run(inputText(data, size));
    return 0;
}
