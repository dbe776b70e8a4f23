#include "vatchange/run/run_verification.h"

#include "data/clock.h"
#include "vatchange/journal/stored_verification.h"
#include "vatchange/journal/verification_text.h"

namespace vatchange {

namespace {

const QString kNotice = QStringLiteral("Huomaa: ");

}  // namespace

void compareAtEnd(RunContext& run, const RunOptions& options) {
    if (!options.compareWithRehearsal || run.result.run == 0 || run.result.cancelled)
        return;
    try {
        run.ports.stepStatus(QStringLiteral("Verrataan ajoa koeajoon"));
        const std::optional<RehearsalComparison> comparison =
            options.compareWithRehearsal(run.database, run.result.run);
        if (!comparison)
            return;
        storeComparison(*run.database.journal(), run.result.run, *comparison);
        if (comparison->differences > 0)
            run.ports.NaytaViesti(kNotice + comparisonText(*comparison) + u'.');
        else
            run.ports.log(kNotice + comparisonText(*comparison) + u'.');
    } catch (const std::exception& error) {
        // a list that somebody has edited is no fault of the run
        run.ports.log(kNotice + QStringLiteral("koeajoon ei voi verrata: ") + errorText(error));
    }
}

void verifyAtEnd(RunContext& run) {
    data::RunJournal* journal = run.database.journal();
    if (journal == nullptr || run.result.run == 0)
        return;
    try {
        run.ports.beginStep(RunStep::Verification);
        run.ports.stepStatus(QStringLiteral("Tarkastetaan ajo"));
        run.outcome.stopped = run.result.cancelled;
        run.outcome.failures = run.result.failures;
        journal->setNote(run.result.run, kOutcomeNote, outcomeNote(run.outcome));
        run.result.verification = verifyRun(run.database, run.result.run);
        storeVerification(*journal, *run.result.verification, data::Clock::now());
        const QString line = verificationLine(*run.result.verification);
        if (run.result.verification->holds() || run.result.cancelled)
            run.ports.log(line);
        else
            run.ports.NaytaViesti(line);
    } catch (const std::exception& error) {
        const QString text = QStringLiteral("Tarkastus: ei onnistunut, ") + errorText(error);
        ++run.result.failedSteps;
        run.result.failures += text;
        run.ports.NaytaViesti(text);
    }
}

}  // namespace vatchange
