#include "vatchange/changes/changes_csv.h"

#include <array>

#include "data/journal/entry_fields.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/journal/undo_tables.h"

namespace vatchange {

namespace {

constexpr std::array kColumns{"seq", "operation", "table", "key", "field", "before", "after"};

const QString& operationWord(data::Operation operation) {
    static const std::array<QString, 3> kWords{QStringLiteral("update"), QStringLiteral("insert"),
                                               QStringLiteral("delete")};
    return kWords.at(static_cast<size_t>(operation));
}

}  // namespace

qint64 visitChangeLines(data::Database& database, qint64 run, qint64 before,
                        const std::function<void(const ChangeLine&)>& see) {
    data::RunJournal& journal = requireJournal(database);
    requireRun(journal, run, EvenRunning::Yes);
    UndoTables tables(database, journal, run, QString());
    ChangeLine line;
    line.seq = before;
    journal.visit(run, data::Direction::Forward, [&](const data::JournalEntry& entry) {
        if (entry.isMark)
            return true;
        const UndoTable& table = *tables.at(entry.table);
        ++line.seq;
        line.operation = operationWord(entry.operation);
        line.table = table.stored.name;
        line.record = entry.record;
        line.key = table.key(entry.key);
        for (data::FieldChange& change : data::changedFields(table.layout(), entry)) {
            line.field = table.layout().field(change.field).name;
            line.before = std::move(change.before);
            line.after = std::move(change.after);
            see(line);
        }
        return true;
    });
    return line.seq;
}

ChangesCsvWriter::ChangesCsvWriter(QIODevice& output) : m_writer(output) {
    for (const char* column : kColumns)
        m_writer.add(QLatin1String(column));
    m_writer.endRecord();
}

qint64 ChangesCsvWriter::add(data::Database& database, qint64 run) {
    m_last = visitChangeLines(database, run, m_last, [this](const ChangeLine& line) {
        m_writer.add(QString::number(line.seq));
        m_writer.add(line.operation);
        m_writer.add(line.table);
        m_writer.add(line.key);
        m_writer.add(line.field);
        m_writer.add(line.before);
        m_writer.add(line.after);
        m_writer.endRecord();
    });
    return m_last;
}

ChangesCsvReader::ChangesCsvReader(QIODevice& input) : m_reader(input) {
    const bool read = m_reader.next() && m_reader.fieldCount() == static_cast<int>(kColumns.size());
    for (int column = 0; read && column < m_reader.fieldCount(); ++column) {
        if (m_reader.field(column) != QByteArrayView(kColumns.at(static_cast<size_t>(column))))
            throw platform::CsvError(1, QStringLiteral("this is no list of changes"));
    }
    if (!read)
        throw platform::CsvError(1, QStringLiteral("this is no list of changes"));
}

bool ChangesCsvReader::next(ChangeLine& line) {
    if (!m_reader.next())
        return false;
    if (m_reader.fieldCount() != static_cast<int>(kColumns.size()))
        throw platform::CsvError(m_reader.line(), QStringLiteral("a line has 7 fields"));
    const auto text = [this](int column) { return QString::fromUtf8(m_reader.field(column)); };
    line = {m_reader.field(0).toByteArray().toLongLong(),
            text(1),
            text(2),
            0,
            text(3),
            text(4),
            text(5),
            text(6)};
    return true;
}

}  // namespace vatchange
