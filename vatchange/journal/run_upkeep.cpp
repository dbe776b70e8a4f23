#include "vatchange/journal/run_upkeep.h"

#include <QtGlobal>

#include "vatchange/journal/run_chain.h"
#include "vatchange/journal/run_refused.h"

namespace vatchange {

data::RunJournal& requireJournal(data::Database& database) {
    data::RunJournal* journal = database.journal();
    if (journal == nullptr)
        throw RunRefused(QStringLiteral("The company's engine keeps no run journal."),
                         QStringLiteral("Yrityksen tietokanta ei pidä ajopäiväkirjaa."));
    return *journal;
}

data::JournalRun requireRun(data::RunJournal& journal, qint64 run, EvenRunning evenRunning) {
    std::optional<data::JournalRun> head = journal.run(run);
    if (!head)
        throw RunRefused(QStringLiteral("There is no run %1.").arg(run),
                         QStringLiteral("Ajoa %1 ei ole.").arg(run));
    if (head->state == data::RunState::Running && evenRunning == EvenRunning::No)
        throw RunRefused(QStringLiteral("Run %1 is going on.").arg(run),
                         QStringLiteral("Ajo %1 on käynnissä.").arg(run));
    return *head;
}

RunLock::RunLock(data::Database& database) : m_database(database) {
    if (!database.beginRun())
        throw RunRefused(
            QStringLiteral("A run of the company is going on: try again when it has ended."),
            QStringLiteral(
                "Yrityksen toinen ajo on kesken: yritä uudestaan, kun se on päättynyt."));
}

RunLock::~RunLock() {
    try {
        m_database.endRun();
    } catch (const std::exception& error) {  // it ends with the process
        qWarning("RunLock: %s", error.what());
    }
}

void acceptRun(data::Database& database, qint64 run) {
    data::RunJournal& journal = requireJournal(database);
    const data::JournalRun head = requireRun(journal, run);
    if (!data::isUnfinished(head.state))
        throw RunRefused(QStringLiteral("Run %1 is not unfinished.").arg(run),
                         QStringLiteral("Ajo %1 ei ole kesken.").arg(run));
    const RunLock lock(database);
    journal.setState(run, data::RunState::Accepted);
    if (head.kind == data::RunKind::Undo)
        settleState(journal, head.undoneRun);
}

void forgetRun(data::Database& database, qint64 run, bool force) {
    data::RunJournal& journal = requireJournal(database);
    const data::JournalRun head = requireRun(journal, run);
    if (!force && data::isUnfinished(head.state))
        throw RunRefused(
            QStringLiteral("Run %1 is unfinished: without its journal it can be neither resumed "
                           "nor undone. --force removes it all the same.")
                .arg(run),
            QStringLiteral("Ajo %1 on kesken: ilman päiväkirjaa sitä ei voi jatkaa eikä perua.")
                .arg(run));
    const std::optional<data::JournalRun> undone =
        head.kind == data::RunKind::Undo ? journal.run(head.undoneRun) : std::nullopt;
    if (!force && undone && undone->state == data::RunState::PartlyUndone)
        throw RunRefused(
            QStringLiteral("Run %1 took back a part of run %2, which would no longer be known. "
                           "--force removes its journal all the same.")
                .arg(run)
                .arg(undone->number),
            QStringLiteral("Ajo %1 perui osan ajosta %2, eikä sitä tiedettäisi enää.")
                .arg(run)
                .arg(undone->number));
    const RunLock lock(database);
    journal.forget(run);
}

}  // namespace vatchange
