#include <QSet>
#include <algorithm>
#include <utility>

#include "data/dictionary/tbl_res_reader.h"
#include "data/record/field_check.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/embedded_database.h"
#include "engines/embedded/key_check.h"
#include "engines/embedded/schema.h"
#include "engines/embedded/stored_table.h"

namespace engines {

namespace embedded {

namespace {

// Of a table that is damaged all over, the first records say enough.
constexpr int kMaxLinesPerTable = 100;
// Between two calls of the progress, in steps of SQLite's virtual machine: some milliseconds.
constexpr int kStepsPerCall = 20000;

class Checker {
  public:
    Checker(const QString& file, const std::function<bool(qint64, qint64)>& progress)
        : m_connection(file, Connection::Schema::Any), m_progress(progress) {
        if (m_progress)
            sqlite3_progress_handler(m_connection.db(), kStepsPerCall, &Checker::goesOn, this);
    }
    ~Checker() { sqlite3_progress_handler(m_connection.db(), 0, nullptr, nullptr); }
    Checker(const Checker&) = delete;
    Checker& operator=(const Checker&) = delete;

    /// @return nothing if the check was cancelled.
    std::optional<QStringList> run() {
        const QStringList lines = findings();
        if (m_failure)
            std::rethrow_exception(m_failure);
        if (m_cancelled)
            return std::nullopt;
        return lines;
    }

  private:
    QStringList findings() {
        try {
            checkPages();
        } catch (const DataError& error) {  // too damaged to list the tables; continue
            m_lines.append(QStringLiteral("database file: %1").arg(error.english()));
        }
        for (const QString& line : foreignObjects(m_connection.db()))
            m_lines.append(QStringLiteral("database file: %1").arg(line));
        const QStringList listed = m_connection.catalogue().tableNames();
        QSet<QString> stored = storedTables(m_connection.db());
        m_tables = listed.size();
        for (const QString& name : listed) {
            ++m_tablesDone;
            if (!stored.remove(foldedName(name))) {
                m_lines.append(
                    QStringLiteral("%1: listed in the catalogue, but not stored").arg(name));
                continue;
            }
            checkTable(name);
        }
        QStringList unlisted(stored.begin(), stored.end());
        unlisted.sort();
        for (const QString& name : unlisted)
            m_lines.append(QStringLiteral("%1: stored, but not listed in the catalogue").arg(name));
        m_lines += m_connection.journal().check();
        return m_lines;
    }

    // Called by SQLite in the middle of a statement: a result other than 0 interrupts it.
    static int goesOn(void* self) {
        auto* checker = static_cast<Checker*>(self);
        try {
            if (!checker->m_cancelled)
                checker->m_cancelled =
                    !checker->m_progress(checker->m_tablesDone, checker->m_tables);
        } catch (...) {
            checker->m_failure = std::current_exception();
            checker->m_cancelled = true;
        }
        return checker->m_cancelled ? 1 : 0;
    }

    // The indexes of the keys are compared with the records below, all of them and not up to a
    // number of errors in the whole file; those of the engine's own tables here.
    void checkPages() {
        runCheck("PRAGMA quick_check");
        Statement internal(m_connection.db(),
                           "SELECT name FROM sqlite_master WHERE type = 'table' AND name LIKE "
                           "'zdb#_%' ESCAPE '#'");
        while (internal.step())
            runCheck("PRAGMA integrity_check(" + quotedName(internal.text(0)) + ')');
    }

    void runCheck(const QByteArray& pragma) {
        Statement check(m_connection.db(), pragma);
        while (check.step()) {
            if (check.text(0) != QLatin1String("ok"))
                m_lines.append(QStringLiteral("database file: %1").arg(check.text(0)));
        }
    }

    void checkTable(const QString& name) {
        try {
            StoredTable& table = m_connection.table(name);
            compareWithDictionary(table);
            m_linesOfTable = 0;
            for (const KeyDef& key : table.keys())
                checkKeyIndex(table, key, [this](const QString& line) { report(line); });
            checkRecords(table);
            if (m_linesOfTable > kMaxLinesPerTable)
                m_lines.append(QStringLiteral("%1: %2 more")
                                   .arg(name)
                                   .arg(m_linesOfTable - kMaxLinesPerTable));
        } catch (const DataError& error) {
            m_lines.append(error.english());
        }
    }

    void report(const QString& line) {
        if (++m_linesOfTable <= kMaxLinesPerTable)
            m_lines.append(line);
    }

    void compareWithDictionary(const StoredTable& table) {
        TTblResBase compiled;
        if (!TTblResReader::ReadResource(table.name(), compiled))
            return;
        const RecordLayout expected(table.name(), compiled.FFields);
        // The shops' engine's data files may have bytes after the last field; copies keep them.
        if (expected.recordLength() > table.layout().recordLength())
            m_lines.append(QStringLiteral("%1: records of %2 bytes, %3 in the program's dictionary")
                               .arg(table.name())
                               .arg(table.layout().recordLength())
                               .arg(expected.recordLength()));
        for (const TFieldCacheItem& field : expected.fields()) {
            const int index = table.layout().indexOf(field.name);
            if (index < 0) {
                m_lines.append(QStringLiteral("%1: the catalogue has no field %2")
                                   .arg(table.name(), field.name));
                continue;
            }
            const TFieldCacheItem& listed = table.layout().field(index);
            if (listed.offset != field.offset || listed.storedLength != field.storedLength ||
                listed.storage != field.storage)
                m_lines.append(
                    QStringLiteral("%1: field %2 lies elsewhere in the program's dictionary")
                        .arg(table.name(), field.name));
        }
    }

    void checkRecords(const StoredTable& table) {
        QByteArray columns = "id, data";
        for (const KeyDef& key : table.keys())
            columns += ", k" + QByteArray::number(key.number);
        Statement rows(
            m_connection.db(),
            "SELECT " + columns + " FROM " + quotedName(storedName(table.name())) + " ORDER BY id");
        while (rows.step()) {
            const QByteArrayView record = rows.blob(1);
            if (record.size() != table.layout().recordLength()) {
                report(QStringLiteral("%1: record %2 has %3 bytes instead of %4")
                           .arg(table.name())
                           .arg(rows.integer(0))
                           .arg(record.size())
                           .arg(table.layout().recordLength()));
                continue;
            }
            const QByteArray bytes = record.toByteArray();
            for (const KeyDef& key : table.keys()) {
                if (rows.blob(2 + key.number) != table.image(key.number).build(bytes))
                    report(QStringLiteral("%1: record %2 (%3) stands under a wrong value of key %4")
                               .arg(table.name())
                               .arg(rows.integer(0))
                               .arg(table.describe(bytes))
                               .arg(key.number));
            }
            checkFields(table, rows.integer(0), bytes);
        }
    }

    void checkFields(const StoredTable& table, RecordId id, const QByteArray& record) {
        const auto* bytes = reinterpret_cast<const uchar*>(record.constData());
        for (const TFieldCacheItem& field : table.layout().fields()) {
            const QString problem = fieldProblem(field, bytes);
            if (!problem.isEmpty())
                report(QStringLiteral("%1: record %2 (%3), field %4: %5")
                           .arg(table.name())
                           .arg(id)
                           .arg(table.describe(record), field.name, problem));
        }
    }

    Connection m_connection;
    const std::function<bool(qint64, qint64)>& m_progress;
    qint64 m_tables = 0;
    qint64 m_tablesDone = 0;
    bool m_cancelled = false;
    std::exception_ptr m_failure;
    QStringList m_lines;
    int m_linesOfTable = 0;
};

}  // namespace

}  // namespace embedded

QStringList checkEmbedded(const QString& folder) {
    return *checkEmbedded(folder, {});
}

std::optional<QStringList> checkEmbedded(const QString& folder,
                                         const std::function<bool(qint64, qint64)>& progress) {
    try {
        return embedded::Checker(embedded::companyFile(folder), progress).run();
    } catch (const DataError& error) {
        if (error.kind() != ErrorKind::Damaged)
            throw;
        return QStringList{error.english()};
    }
}

}  // namespace engines
