#include "vatchange/run/journal_session.h"

#include "company/backup.h"
#include "company/company.h"
#include "company/logs.h"
#include "data/clock.h"
#include "data/journal/entry_fields.h"
#include "vatchange/run/row_lists.h"
#include "vatchange/run/safety_limits.h"

namespace vatchange {

namespace {

const QString kChanged = QStringLiteral(
    " ajon alkamisen jälkeen. Peru ajo tai hyväksy se sellaisena kuin se on, ja aja määrittely "
    "sitten uudestaan.");

/// The table that is no longer laid out as when the run changed it; empty if none.
QString changedTable(data::Database& database, data::RunJournal& journal, qint64 run) {
    for (const data::JournalTable& table : journal.tables(run)) {
        try {
            const auto file = database.openTable(table.name);
            if (!data::describes(table, file->layout(), file->keys()))
                return table.name;
        } catch (const data::DataError& error) {
            if (error.kind() != data::ErrorKind::NoSuchTable)
                throw;
            return table.name;
        }
    }
    return {};
}

/// Why a run cannot be resumed; empty if it can.
QString resumeProblem(RunContext& run, data::RunJournal& journal, const LoadedDefinition& loaded,
                      qint64 number) {
    const std::optional<data::JournalRun> head = journal.run(number);
    if (!head)
        return QStringLiteral("sitä ei ole ajopäiväkirjassa.");
    // this process is in a run: one that is stored as running has died
    if (head->kind != data::RunKind::Change ||
        (!data::isUnfinished(head->state) && head->state != data::RunState::Running &&
         head->state != data::RunState::Errors))
        return QStringLiteral("se ei ole kesken.");
    if (head->definition.compare(run.ports.definitionName(), Qt::CaseInsensitive) != 0)
        return QStringLiteral("se on määrittelyn %1 ajo.").arg(head->definition);
    if (journal.note(number, kDefinitionNote) != definitionNote(loaded.definition))
        return QStringLiteral("määrittelyä on muutettu") + kChanged;
    if (journal.note(number, kRatesNote) != ratesNote(run.classes.rates()))
        return QStringLiteral("alv-luokkien prosentteja on muutettu") + kChanged;
    const QString table = changedTable(run.database, journal, number);
    if (!table.isEmpty())
        return QStringLiteral("taulun %1 rakennetta on muutettu").arg(table) + kChanged;
    return {};
}

void begin(RunContext& run, data::RunJournal& journal, const LoadedDefinition& loaded,
           const RunOptions& options) {
    data::JournalRun head;
    head.definition = run.ports.definitionName();
    head.started = data::Clock::now();
    head.user = run.attempt.user;
    head.computer = run.attempt.computer;
    head.batch = options.batch;
    run.result.run = journal.begin(head, {{kDefinitionNote, definitionNote(loaded.definition)},
                                          {kRatesNote, ratesNote(run.classes.rates())},
                                          {kAttemptsNote, attemptsNote({run.attempt})}});
}

void resume(RunContext& run, data::RunJournal& journal, qint64 number) {
    auto progress = std::make_unique<RunProgress>(RunProgress::read(journal, number));
    journal.resume(number);
    journal.setNote(number, kOutcomeNote, {});
    beginAttempt(journal, number, run.attempt);
    run.progress = std::move(progress);
    run.result.run = number;
    run.ports.log(QStringLiteral("Jatketaan keskeytynyttä ajoa %1").arg(number));
}

/// Takes back the entering of a run that has changed nothing yet.
void abandon(RunContext& run, data::RunJournal& journal) {
    const bool isNew = !run.progress;
    run.journal = nullptr;
    run.progress.reset();
    const qint64 number = run.result.run;
    try {
        if (!isNew && number != 0)
            endAttempt(run, journal);
        if (journal.recording() != 0)
            journal.end(data::RunState::Stopped);
        if (isNew && number != 0)
            journal.forget(number);
    } catch (const std::exception& error) {
        run.ports.log(QStringLiteral("Virhe ajopäiväkirjan kirjoituksessa: ") + errorText(error));
    }
    run.result.run = 0;
}

/// Returns false if the products cannot be judged; the reason has been shown.
bool judgeWithoutJournal(RunContext& run) {
    try {
        judgeProducts(run);
        return true;
    } catch (const std::exception& error) {
        run.result.refusal = QStringLiteral("Virhe turvarajan tarkastuksessa: ") + errorText(error);
        run.ports.NaytaViesti(run.result.refusal);
        return false;
    }
}

}  // namespace

RunAttempt newAttempt() {
    RunAttempt attempt;
    attempt.started = data::Clock::now();
    attempt.user = company::userName();
    attempt.computer = company::computerName();
    attempt.logFrom = company::changeLogSize();
    attempt.lostLogLines = -company::lostChangeLogLines().count;
    if (const auto backup = company::lastBackup(company::currentCompany().name)) {
        attempt.backupFile = backup->file;
        attempt.backupWhen = backup->when;
    }
    return attempt;
}

void endAttempt(const RunContext& run, data::RunJournal& journal) {
    RunAttempt end = run.attempt;
    end.ended = data::Clock::now();
    end.logTo = company::changeLogSize();
    end.lostLogLines += company::lostChangeLogLines().count;
    endAttempt(journal, run.result.run, end);
}

bool enterJournal(RunContext& run, const LoadedDefinition& loaded, const RunOptions& options) {
    data::RunJournal* journal = run.database.journal();
    QString& refusal = run.result.refusal;
    if (!journal) {
        if (options.resume == 0)
            return judgeWithoutJournal(run);
        refusal = QStringLiteral("Ajoa %1 ei voi jatkaa: yrityksellä ei ole ajopäiväkirjaa.")
                      .arg(options.resume);
        run.ports.NaytaViesti(refusal);
        return false;
    }
    try {
        QString problem;
        if (options.resume == 0)
            begin(run, *journal, loaded, options);
        else if (problem = resumeProblem(run, *journal, loaded, options.resume); problem.isEmpty())
            resume(run, *journal, options.resume);
        else
            refusal = QStringLiteral("Ajoa %1 ei voi jatkaa: ").arg(options.resume) + problem;
        if (problem.isEmpty()) {
            run.journal = journal;
            judgeProducts(run);
            listRows(run);
        }
    } catch (const std::exception& error) {
        refusal = QStringLiteral("Virhe ajopäiväkirjan kirjoituksessa, ajoa ei aloiteta: ") +
                  errorText(error);
    }
    if (refusal.isEmpty())
        return true;
    abandon(run, *journal);
    run.ports.NaytaViesti(refusal);
    return false;
}

data::RunState stateOf(const RunContext& run) {
    if (run.result.cancelled)
        return data::RunState::Stopped;
    if (run.leftBehind || run.result.skippedProducts > 0)
        return data::RunState::Incomplete;
    const bool unexplained = run.result.verification && run.result.verification->unexplained();
    return run.result.failedSteps > 0 || unexplained ? data::RunState::Errors
                                                     : data::RunState::Done;
}

void leaveJournal(RunContext& run) {
    if (!run.journal && run.result.run != 0)
        return;  // left already
    run.result.state = stateOf(run);
    if (!run.journal)
        return;
    try {
        endAttempt(run, *run.journal);
        run.journal->end(run.result.state);
    } catch (const std::exception& error) {
        run.result.state = data::RunState::Interrupted;
        ++run.result.failedSteps;
        run.result.failures +=
            QStringLiteral("Virhe ajopäiväkirjan päätöksessä: ") + errorText(error);
        run.ports.NaytaViesti(run.result.failures.last());
    }
    run.journal = nullptr;
}

}  // namespace vatchange
