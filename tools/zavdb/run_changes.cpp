#include "tools/zavdb/run_changes.h"

#include <array>

#include "company/unfinished_note.h"
#include "data/engine/run_journal.h"
#include "platform/csv.h"
#include "vatchange/changes/changes_csv.h"

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

void addLine(platform::CsvWriter& writer, const QStringList& cells) {
    for (const QString& cell : cells)
        writer.add(cell);
    writer.endRecord();
}

QString kindWord(data::RunKind kind) {
    return kind == data::RunKind::Undo ? QStringLiteral("undo") : QStringLiteral("run");
}

}  // namespace

void writeRuns(data::Database& database, QIODevice& output) {
    platform::CsvWriter writer(output);
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
    vatchange::ChangesCsvWriter writer(output);
    const qint64 changes = writer.add(database, run);
    writer.flush();
    return changes;
}

}  // namespace tools
