#include "vatchange/journal/run_chain.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <algorithm>

namespace vatchange {

namespace {

using data::Direction;
using data::JournalEntry;
using data::JournalRun;
using data::RunJournal;
using data::RunKind;
using data::RunState;

const QString kStateNote = QStringLiteral("state before undo");
const QString kScopeRecords = QStringLiteral("records");  // table, key, table, key ...

bool isUndoOf(const JournalRun& run, qint64 undone) {
    return run.kind == RunKind::Undo && run.undoneRun == undone;
}

void addTakenBack(RunJournal& journal, const std::vector<JournalRun>& runs, qint64 run,
                  data::IdSets& taken) {
    for (const JournalRun& undo : runs) {
        // an undo has a higher number than what it undoes, so this ends with a damaged head too
        if (!isUndoOf(undo, run) || undo.number <= run)
            continue;
        data::IdSets redone;
        addTakenBack(journal, runs, undo.number, redone);
        visitRecords(journal, undo.number, [&](const JournalEntry& entry) {
            if (entry.origin > 0 && !redone.contains(0, entry.seq))
                taken.add(0, entry.origin);
            return true;
        });
    }
}

/// Index in `tables` of each table of another run; -1 if it is none of them.
std::vector<int> indexesIn(const std::vector<data::JournalTable>& tables,
                           const std::vector<data::JournalTable>& others) {
    std::vector<int> indexes;
    for (const data::JournalTable& other : others) {
        const auto found =
            std::find_if(tables.begin(), tables.end(), [&other](const data::JournalTable& table) {
                return table.name.compare(other.name, Qt::CaseInsensitive) == 0;
            });
        indexes.push_back(found == tables.end() ? -1 : static_cast<int>(found - tables.begin()));
    }
    return indexes;
}

bool touches(RunJournal& journal, qint64 later, const std::vector<data::JournalTable>& tables,
             const data::IdSets& records) {
    const std::vector<int> indexes = indexesIn(tables, journal.tables(later));
    const data::IdSets taken = takenBack(journal, later);
    bool found = false;
    visitRecords(journal, later, [&](const JournalEntry& entry) {
        const auto table = static_cast<size_t>(entry.table);
        found = table < indexes.size() && indexes[table] >= 0 &&
                records.contains(indexes[table], entry.record) && !taken.contains(0, entry.seq);
        return !found;
    });
    return found;
}

}  // namespace

QByteArray undoNote(const UndoScope& scope) {
    QCborMap map{{QStringLiteral("exact"), scope.exact},
                 {QStringLiteral("table"), scope.table},
                 {QStringLiteral("key"), scope.key}};
    if (!scope.records.empty()) {
        QCborArray records;
        for (const auto& [table, key] : scope.records) {
            records.append(table);
            records.append(key);
        }
        map.insert(kScopeRecords, records);
    }
    return map.toCborValue().toCbor();
}

UndoScope undoScopeOf(RunJournal& journal, qint64 run) {
    const QCborMap map =
        QCborValue::fromCbor(journal.note(run, kUndoNote).value_or(QByteArray())).toMap();
    UndoScope scope{map[QStringLiteral("exact")].toBool(), map[QStringLiteral("table")].toString(),
                    map[QStringLiteral("key")].toString()};
    const QCborArray records = map[kScopeRecords].toArray();
    for (qsizetype i = 0; i + 1 < records.size(); i += 2)
        scope.records.emplace(records[i].toString(), records[i + 1].toString());
    return scope;
}

void visitRecords(RunJournal& journal, qint64 run,
                  const std::function<bool(const JournalEntry&)>& see) {
    data::IdSets seen;
    journal.visit(run, Direction::Backward, [&](const JournalEntry& entry) {
        return entry.isMark || !seen.add(entry.table, entry.record) || see(entry);
    });
}

data::IdSets takenBack(RunJournal& journal, qint64 run) {
    data::IdSets taken;
    addTakenBack(journal, journal.runs(), run, taken);
    return taken;
}

qint64 laterRunOver(RunJournal& journal, qint64 run, const data::IdSets& records) {
    const std::vector<data::JournalTable> tables = journal.tables(run);
    const std::vector<JournalRun> runs = journal.runs();
    for (auto later = runs.rbegin(); later != runs.rend() && later->number > run; ++later) {
        // undos of later runs are accounted for by takenBack() of those runs
        const bool isCounted = later->kind == RunKind::Change || later->undoneRun < run;
        if (isCounted && later->state != RunState::Undone &&
            touches(journal, later->number, tables, records))
            return later->number;
    }
    return 0;
}

OrderFingerprints fingerprintsOfUndos(RunJournal& journal, qint64 run) {
    OrderFingerprints fingerprints;
    data::IdSets chain;
    chain.add(0, run);
    for (const JournalRun& undo : journal.runs()) {
        if (undo.kind != RunKind::Undo || !chain.contains(0, undo.undoneRun))
            continue;
        chain.add(0, undo.number);
        journal.visit(undo.number, Direction::Forward, [&fingerprints](const JournalEntry& entry) {
            const auto mark = entry.isMark ? orderMarkOf(entry.mark) : std::nullopt;
            if (mark)
                fingerprints[{mark->table.toUpper(), mark->number}] = mark->fingerprint;
            return true;
        });
    }
    return fingerprints;
}

void beginUndoneState(RunJournal& journal, qint64 run) {
    const std::optional<JournalRun> head = journal.run(run);
    if (!head || head->state == RunState::PartlyUndone)
        return;
    if (!journal.note(run, kStateNote)) {
        const RunState state =
            head->state == RunState::Running ? RunState::Interrupted : head->state;
        journal.setNote(run, kStateNote, QByteArray::number(static_cast<int>(state)));
    }
    journal.setState(run, RunState::PartlyUndone);
}

void settleState(RunJournal& journal, qint64 run) {
    const std::vector<JournalRun> runs = journal.runs();
    const auto head = std::find_if(runs.begin(), runs.end(),
                                   [run](const JournalRun& one) { return one.number == run; });
    if (head == runs.end())
        return;
    // a whole undo counts, whatever conflicts it has left
    const bool undone = std::any_of(runs.begin(), runs.end(), [&](const JournalRun& undo) {
        return isUndoOf(undo, run) && undo.state == RunState::Done &&
               undoScopeOf(journal, undo.number).isWhole();
    });
    RunState state = RunState::Undone;
    if (!undone) {
        const data::IdSets taken = takenBack(journal, run);
        bool all = true;
        visitRecords(journal, run, [&](const JournalEntry& entry) {
            all = taken.contains(0, entry.seq);
            return all;
        });
        const QByteArray before = journal.note(run, kStateNote).value_or(QByteArray());
        if (taken.count() == 0 && !before.isEmpty())
            state = static_cast<RunState>(before.toInt());
        else if (!all)
            state = RunState::PartlyUndone;
    }
    journal.setState(run, state);
    if (head->kind == RunKind::Undo)
        settleState(journal, head->undoneRun);
}

}  // namespace vatchange
