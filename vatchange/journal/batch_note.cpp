#include "vatchange/journal/batch_note.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <algorithm>

#include "vatchange/journal/run_notes.h"

namespace vatchange {

namespace {

const QString kBatchNote = QStringLiteral("batch");
const QString kAfter = QStringLiteral("after");
const QString kDefinitions = QStringLiteral("definitions");
const QString kName = QStringLiteral("name");
const QString kValues = QStringLiteral("values");
const QString kRun = QStringLiteral("run");
const QString kFinished = QStringLiteral("finished");

bool sameName(const QString& left, const QString& right) {
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

Batch decode(const QByteArray& note) {
    const QCborMap map = QCborValue::fromCbor(note).toMap();
    Batch batch;
    batch.after = map[kAfter].toInteger();
    const QCborArray definitions = map[kDefinitions].toArray();
    for (const QCborValue& value : definitions) {
        const QCborMap definition = value.toMap();
        batch.definitions.push_back({definition[kName].toString(),
                                     definition[kValues].toByteArray(),
                                     definition[kRun].toInteger(), definition[kFinished].toBool()});
    }
    return batch;
}

/// Number of the first of the runs that is one of the definition and that no other definition of
/// the batch has; 0 if there is none.
template <typename Accept>
qint64 runOf(const BatchDefinition& definition, const Batch& batch,
             const std::vector<data::JournalRun>& runs, data::RunJournal& journal, Accept accept) {
    for (const data::JournalRun& run : runs) {
        const bool taken =
            std::any_of(batch.definitions.begin(), batch.definitions.end(),
                        [&run](const BatchDefinition& other) { return other.run == run.number; });
        if (run.kind == data::RunKind::Change && !taken && accept(run) &&
            sameName(run.definition, definition.name) &&
            journal.note(run.number, kDefinitionNote) == definition.values)
            return run.number;
    }
    return 0;
}

}  // namespace

bool Batch::isFinished() const {
    return std::all_of(definitions.begin(), definitions.end(),
                       [](const BatchDefinition& definition) { return definition.finished; });
}

qint64 Batch::firstRun() const {
    const auto started =
        std::find_if(definitions.begin(), definitions.end(),
                     [this](const BatchDefinition& definition) { return definition.run > after; });
    return started == definitions.end() ? 0 : started->run;
}

bool Batch::sameDefinitions(const Batch& other) const {
    return std::equal(definitions.begin(), definitions.end(), other.definitions.begin(),
                      other.definitions.end(),
                      [](const BatchDefinition& left, const BatchDefinition& right) {
                          return sameName(left.name, right.name) && left.values == right.values;
                      });
}

Batch newBatch(data::RunJournal& journal, std::vector<BatchDefinition> definitions) {
    Batch batch{0, std::move(definitions)};
    const std::vector<data::JournalRun> runs = journal.runs();
    if (!runs.empty())
        batch.after = runs.back().number;
    for (BatchDefinition& definition : batch.definitions) {
        definition.run = runOf(definition, batch, runs, journal, [](const data::JournalRun& run) {
            return data::isUnfinished(run.state);
        });
    }
    return batch;
}

std::optional<Batch> readBatch(data::RunJournal& journal) {
    const std::optional<QByteArray> note = journal.note(0, kBatchNote);
    if (!note)
        return std::nullopt;
    Batch batch = decode(*note);
    const std::vector<data::JournalRun> runs = journal.runs();
    for (BatchDefinition& definition : batch.definitions) {
        if (definition.finished)
            continue;
        if (definition.run == 0)
            definition.run =
                runOf(definition, batch, runs, journal,
                      [&batch](const data::JournalRun& run) { return run.number > batch.after; });
        if (definition.run == 0)
            continue;
        const auto run = std::find_if(runs.begin(), runs.end(),
                                      [&definition](const data::JournalRun& candidate) {
                                          return candidate.number == definition.run;
                                      });
        definition.finished = run == runs.end() || (run->state != data::RunState::Running &&
                                                    !data::isUnfinished(run->state));
    }
    return batch;
}

void storeBatch(data::RunJournal& journal, const Batch& batch) {
    QCborArray definitions;
    for (const BatchDefinition& definition : batch.definitions)
        definitions.append(QCborMap{{kName, definition.name},
                                    {kValues, definition.values},
                                    {kRun, definition.run},
                                    {kFinished, definition.finished}});
    journal.setNote(
        0, kBatchNote,
        QCborMap{{kAfter, batch.after}, {kDefinitions, definitions}}.toCborValue().toCbor());
}

void removeBatch(data::RunJournal& journal) {
    journal.setNote(0, kBatchNote, {});
}

}  // namespace vatchange
