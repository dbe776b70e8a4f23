#include "vatchange/run/unfinished_runs.h"

#include "company/company.h"
#include "company/unfinished_note.h"
#include "data/engine/run_journal.h"
#include "vatchange/journal/history.h"
#include "vatchange/journal/repeated_rows.h"

namespace vatchange {

namespace {

const QString kContinue = QStringLiteral("\r\rJatketaanko?");

/// Refuses the run (unattended) or asks whether to go on. `advice`: what to do about it without a
/// window.
bool acceptOrRefuse(RunContext& run, const QString& text, const QString& advice) {
    if (run.ports.unattended()) {
        run.result.refusal = QStringLiteral("Määrittelyä ei ajeta: ") + text + u' ' + advice;
        run.result.blocked = true;
        run.ports.NaytaViesti(run.result.refusal);
        return false;
    }
    run.ports.log(QStringLiteral("Huomaa: ") + text);
    if (run.ports.ask(text + kContinue))
        return true;
    run.result.refusal = text;
    return false;
}

QString command(const char* name, qint64 number) {
    return QStringLiteral("zavdb %1 \"%2\" %3")
        .arg(QLatin1String(name), company::currentCompany().name)
        .arg(number);
}

/// The notes of runs that kept no journal.
bool notesAllow(RunContext& run) {
    QStringList notes;
    for (const company::UnfinishedNote& note : company::readUnfinishedNotes())
        notes += company::unfinishedNoteText(note) + u'.';
    if (notes.isEmpty())
        return true;
    const QString text =
        notes.join(u' ') +
        QStringLiteral(
            " Asiakashinnastojen, kampanjoiden, toistuvaislaskutuksen ja "
            "määräalennusten rivit, joiden tuotteella on vielä vanha alv-luokka, on "
            "voitu jo kertoa kertoimella: tarkasta ne, ettei tämä ajo kerro niitä "
            "uudestaan.");
    if (!run.definition.changesDependents()) {
        run.ports.log(QStringLiteral("Huomaa: ") + text);
        return true;
    }
    const QString advice = QStringLiteral("Hyväksy ajo sitten (%1) tai aja määrittely lomakkeelta.")
                               .arg(command("accept-run", 0));
    if (!acceptOrRefuse(run, text, advice))
        return false;
    company::acceptUnfinishedNote(run.ports.definitionName());
    return true;
}

/// The run whose rows an unfinished run is changing: an undo changes those of the run it takes
/// back.
qint64 runOfRows(const data::JournalRun& run) {
    return run.kind == data::RunKind::Undo ? run.undoneRun : run.number;
}

/// Of these a run leaves out the rows when it lists its own.
bool isOfBatch(const data::JournalRun& run, qint64 batch) {
    return batch != 0 && (run.number == batch || run.batch == batch);
}

bool journalAllows(RunContext& run, const RunOptions& options) {
    data::RunJournal* journal = run.database.journal();
    if (journal == nullptr || !run.definition.changesDependents())
        return true;
    for (const data::JournalRun& earlier : journal->runs()) {
        if (!data::isUnfinished(earlier.state) || isOfBatch(earlier, options.batch))
            continue;
        const std::vector<RepeatedRows> rows =
            repeatedRows(run.database, runOfRows(earlier), run.definition);
        if (rows.empty())
            continue;
        const QString text =
            runText(earlier) +
            QStringLiteral(" on jo muuttanut rivejä, jotka tämä ajo muuttaisi uudestaan: ") +
            repeatedRowsText(rows) + u'.';
        const QString number = QString::number(earlier.number);
        const QString advice =
            QStringLiteral("Jatka ajoa %1, peru se (%2) tai hyväksy se (%3), ja aja uudestaan.")
                .arg(number, command("undo", earlier.number),
                     command("accept-run", earlier.number));
        if (!acceptOrRefuse(run, text, advice))
            return false;
    }
    return true;
}

}  // namespace

bool earlierRunsAllow(RunContext& run, const RunOptions& options) {
    if (options.resume != 0)  // asked when the run began
        return true;
    try {
        return notesAllow(run) && journalAllows(run, options);
    } catch (const std::exception& error) {
        run.result.refusal =
            QStringLiteral("Virhe ajopäiväkirjan lukemisessa: ") + errorText(error);
        run.ports.NaytaViesti(run.result.refusal);
        return false;
    }
}

}  // namespace vatchange
