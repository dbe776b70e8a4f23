#include "tools/zavdb/run_changes.h"

#include <array>

#include "company/unfinished_note.h"
#include "data/journal/entry_fields.h"
#include "tools/zavdb/csv.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/journal/undo_tables.h"

namespace tools {

namespace {

QString timeText(const QDateTime& time) {
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString stateWord(data::RunState state) {
    static constexpr std::array kWords{"running",    "interrupted",   "stopped",
                                       "incomplete", "errors",        "done",
                                       "accepted",   "partly undone", "undone"};
    return QString::fromLatin1(kWords.at(static_cast<size_t>(state)));
}

QString operationWord(data::Operation operation) {
    static constexpr std::array kWords{"update", "insert", "delete"};
    return QString::fromLatin1(kWords.at(static_cast<size_t>(operation)));
}

void addLine(CsvWriter& writer, const QStringList& cells) {
    for (const QString& cell : cells)
        writer.add(cell);
    writer.endRecord();
}

QString kindWord(data::RunKind kind) {
    return kind == data::RunKind::Undo ? QStringLiteral("undo") : QStringLiteral("run");
}

}  // namespace

void writeRuns(data::Database& database, QIODevice& output) {
    CsvWriter writer(output);
    addLine(
        writer,
        QStringLiteral("run,kind,definition,started,ended,state,rows,user,computer").split(u','));
    for (const company::UnfinishedNote& note : company::readUnfinishedNotes())
        addLine(writer, {QStringLiteral("0"), kindWord(data::RunKind::Change), note.definition,
                         timeText(note.started), QString(), stateWord(data::RunState::Interrupted),
                         QString(), QString(), note.computer});
    if (data::RunJournal* journal = database.journal()) {
        for (const data::JournalRun& run : journal->runs())
            addLine(writer, {QString::number(run.number), kindWord(run.kind), run.definition,
                             timeText(run.started), timeText(run.ended), stateWord(run.state),
                             QString::number(run.rows), run.user, run.computer});
    }
    writer.flush();
}

qint64 writeChanges(data::Database& database, qint64 run, QIODevice& output) {
    data::RunJournal& journal = vatchange::requireJournal(database);
    vatchange::requireRun(journal, run, vatchange::EvenRunning::Yes);
    vatchange::UndoTables tables(database, journal, run, QString());
    CsvWriter writer(output);
    addLine(writer, QStringLiteral("seq,operation,table,key,field,before,after").split(u','));
    qint64 seq = 0;
    journal.visit(run, data::Direction::Forward, [&](const data::JournalEntry& entry) {
        if (entry.isMark)
            return true;
        const vatchange::UndoTable& table = *tables.at(entry.table);
        const QString number = QString::number(++seq);
        const QString key = table.key(entry.key);
        for (const data::FieldChange& change : data::changedFields(table.layout(), entry))
            addLine(writer, {number, operationWord(entry.operation), table.stored.name, key,
                             table.layout().field(change.field).name, change.before, change.after});
        return true;
    });
    writer.flush();
    return seq;
}

}  // namespace tools
