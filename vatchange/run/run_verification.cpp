#include "vatchange/run/run_verification.h"

#include "vatchange/journal/verification_text.h"

namespace vatchange {

void verifyAtEnd(RunContext& run) {
    data::RunJournal* journal = run.database.journal();
    if (journal == nullptr || run.result.run == 0)
        return;
    try {
        run.ports.stepStatus(QStringLiteral("Tarkastetaan ajo"));
        run.outcome.stopped = run.result.cancelled;
        journal->setNote(run.result.run, kOutcomeNote, outcomeNote(run.outcome));
        run.result.verification = verifyRun(run.database, run.result.run);
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
