#include "vatchange/journal/undo.h"

#include <QtGlobal>

#include "data/clock.h"
#include "vatchange/journal/run_attempts.h"
#include "vatchange/journal/run_refused.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/journal/undo_walk.h"

namespace vatchange {

namespace {

using data::JournalRun;
using data::RunJournal;
using data::RunKind;
using data::RunState;

/// The unfinished undo of the same scope that is to go on; 0 if there is none.
/// @throws RunRefused if another unfinished undo is in the way.
qint64 undoToResume(RunJournal& journal, qint64 run, const UndoScope& scope) {
    for (const JournalRun& undo : journal.runs()) {
        const bool unfinished = data::isUnfinished(undo.state) || undo.state == RunState::Running;
        if (undo.kind != RunKind::Undo || !unfinished || undo.number == run)
            continue;
        if (undo.undoneRun == run && undoScopeOf(journal, undo.number) == scope)
            return undo.number;
        throw RunRefused(
            QStringLiteral("Run %1, the undo of run %2, is unfinished: repeat that undo with the "
                           "same options, or accept run %1.")
                .arg(undo.number)
                .arg(undo.undoneRun),
            QStringLiteral("Ajo %1, joka peruu ajoa %2, on kesken: jatka perumista tai hyväksy "
                           "ajo %1.")
                .arg(undo.number)
                .arg(undo.undoneRun));
    }
    return 0;
}

void requireNewest(RunJournal& journal, qint64 run, const data::IdSets& records) {
    const qint64 later = laterRunOver(journal, run, records);
    if (later != 0)
        throw RunRefused(
            QStringLiteral("Run %1 changed records of run %2 after it: undo run %1 first.")
                .arg(later)
                .arg(run),
            QStringLiteral("Ajo %1 on muuttanut ajon %2 tietueita sen jälkeen: peru ensin ajo %1.")
                .arg(later)
                .arg(run));
}

void requireSelection(const UndoWalk& walk, qint64 run, const UndoScope& scope) {
    if (scope.isWhole() || !walk.nothingSelected())
        return;
    QString what = scope.key.isEmpty() ? scope.table : scope.table + u' ' + scope.key;
    if (what.isEmpty())
        what = scope.records.begin()->first + u' ' + scope.records.begin()->second;
    throw RunRefused(QStringLiteral("Run %1 changed no record of %2.").arg(run).arg(what),
                     QStringLiteral("Ajo %1 ei muuttanut tietuetta %2.").arg(run).arg(what));
}

QString beginning(const JournalRun& head, const UndoScope& scope) {
    QString text = QStringLiteral("Perutaan ajo %1").arg(head.number);
    if (!head.definition.isEmpty())
        text += QStringLiteral(", määrittely ") + head.definition;
    text += QStringLiteral(", aloitettu ") +
            head.started.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"));
    if (!scope.table.isEmpty())
        text += QStringLiteral(", taulu ") + scope.table;
    if (!scope.key.isEmpty())
        text += QStringLiteral(", tietue ") + scope.key;
    if (!scope.records.empty())
        text += QStringLiteral(", valitut tietueet %1 kpl").arg(scope.records.size());
    return text;
}

QString ending(qint64 run, const UndoResult& result) {
    QString text = QStringLiteral(
                       "Perutaan ajo %1: palautettu %2, poistettu %3, lisätty %4, "
                       "jätetty ennalleen %5")
                       .arg(run)
                       .arg(result.restored)
                       .arg(result.removed)
                       .arg(result.putBack)
                       .arg(result.conflicts);
    if (result.held > 0)
        text += QStringLiteral(", toisen ohjelman käytössä %1").arg(result.held);
    return text + (result.cancelled || result.held > 0 ? QStringLiteral(". Peruminen jäi kesken.")
                                                       : QStringLiteral(". Peruminen on valmis."));
}

void endIncomplete(RunJournal& journal, UndoPorts& ports) {
    if (journal.recording() == 0)
        return;
    try {
        journal.end(RunState::Incomplete);
    } catch (const std::exception& error) {  // then it counts as interrupted
        ports.log(QStringLiteral("Virhe perumisen lopetuksessa: ") + data::errorText(error));
    }
}

qint64 logSize(const UndoOptions& options) {
    return options.logSize ? options.logSize() : -1;
}

void recordEnd(RunJournal& journal, const UndoOptions& options, const UndoResult& result) {
    RunAttempt end;
    end.ended = data::Clock::now();
    end.logTo = logSize(options);
    endAttempt(journal, result.run, end);
}

void recordBeginning(RunJournal& journal, const JournalRun& undone, const UndoOptions& options,
                     UndoResult& result) {
    RunAttempt attempt;
    attempt.started = data::Clock::now();
    attempt.user = options.user;
    attempt.computer = options.computer;
    attempt.logFrom = logSize(options);
    if (result.resumed) {
        journal.resume(result.run);
        beginAttempt(journal, result.run, attempt);
        return;
    }
    JournalRun head;
    head.kind = RunKind::Undo;
    head.definition = undone.definition;
    head.started = attempt.started;
    head.user = options.user;
    head.computer = options.computer;
    head.undoneRun = undone.number;
    result.run = journal.begin(
        head, {{kUndoNote, undoNote(options.scope)}, {kAttemptsNote, attemptsNote({attempt})}});
}

/// Lets commits be flushed together: each record's change is complete on its own.
class DeferredFlushes {
  public:
    explicit DeferredFlushes(data::Database& database) : m_database(database) {
        database.deferFlushes(true);
    }
    ~DeferredFlushes() {
        if (!m_on)
            return;
        try {
            end();
        } catch (const std::exception& error) {  // the failure that led here is reported
            qWarning("DeferredFlushes: %s", error.what());
        }
    }
    DeferredFlushes(const DeferredFlushes&) = delete;
    DeferredFlushes& operator=(const DeferredFlushes&) = delete;

    void end() {
        m_on = false;
        m_database.deferFlushes(false);
    }

  private:
    data::Database& m_database;
    bool m_on = true;
};

void performRecorded(data::Database& database, UndoWalk& walk, const JournalRun& undone,
                     const UndoOptions& options, UndoPorts& ports, UndoResult& result) {
    RunJournal& journal = *database.journal();
    recordBeginning(journal, undone, options, result);
    try {
        beginUndoneState(journal, undone.number);
        ports.log(
            beginning(undone, options.scope) +
            (result.resumed ? QStringLiteral(", jatketaan kesken jäänyttä perumista") : QString()));
        if (result.resumed)
            walk.takeUp(result.run);
        DeferredFlushes deferred(database);
        walk.perform();
        deferred.end();
        journal.end(result.cancelled  ? RunState::Stopped
                    : result.held > 0 ? RunState::Incomplete
                                      : RunState::Done);
    } catch (...) {
        endIncomplete(journal, ports);
        throw;
    }
    if (!result.cancelled && result.held == 0)
        settleState(journal, undone.number);
    ports.log(ending(undone.number, result));
    recordEnd(journal, options, result);
}

}  // namespace

UndoResult undoRun(data::Database& database, qint64 run, const UndoOptions& options,
                   UndoPorts& ports) {
    RunJournal& journal = requireJournal(database);
    const JournalRun undone = requireRun(journal, run);
    if (undone.state == RunState::Undone)
        throw RunRefused(QStringLiteral("Run %1 has been undone already.").arg(run),
                         QStringLiteral("Ajo %1 on jo peruttu.").arg(run));
    std::optional<RunLock> lock;
    if (!options.dryRun)
        lock.emplace(database);
    UndoResult result;
    result.run = undoToResume(journal, run, options.scope);
    result.resumed = result.run != 0;
    UndoTables tables(database, journal, run, options.scope.table);
    UndoWalk walk(database, run, options, tables, ports, result);
    walk.prepare();
    requireSelection(walk, run, options.scope);
    requireNewest(journal, run, walk.records());
    if (options.dryRun) {
        result.run = 0;
        walk.perform();
    } else {
        performRecorded(database, walk, undone, options, ports, result);
    }
    return result;
}

}  // namespace vatchange
