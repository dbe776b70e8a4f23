#include "vatchange/journal/verification.h"

#include <algorithm>

#include "vatchange/journal/journal_check.h"
#include "vatchange/journal/limited_products.h"
#include "vatchange/journal/rehearsal_note.h"
#include "vatchange/journal/remaining_classes.h"
#include "vatchange/journal/run_notes.h"

namespace vatchange {

namespace {

data::DataError noRun(qint64 run) {
    return data::DataError(data::ErrorKind::Gone, QStringLiteral("run journal"),
                           QStringLiteral("there is no run %1").arg(run))
        .inFinnish(QStringLiteral("ajoa %1 ei ole").arg(run));
}

std::optional<RunOutcome> outcomeOfRun(data::RunJournal& journal, qint64 run) {
    const std::optional<QByteArray> note = journal.note(run, kOutcomeNote);
    if (!note)
        return std::nullopt;
    return outcomeOfNote(*note);
}

void addRehearsal(data::RunJournal& journal, qint64 run, Verification& verification,
                  FindingList& findings) {
    const std::optional<RehearsalComparison> comparison = storedComparison(journal, run);
    if (!comparison)
        return;
    for (const RehearsalDifference& one : comparison->first) {
        findings.add(FindingKind::OtherThanRehearsed, [&one] {
            Finding finding;
            finding.table = one.table;
            finding.record = one.record;
            finding.key = one.key;
            finding.field = one.field;
            finding.before = one.before;
            finding.after = one.after;
            finding.rehearsed = one;
            return finding;
        });
    }
    verification.counts[static_cast<size_t>(FindingKind::OtherThanRehearsed)] =
        comparison->differences;
}

}  // namespace

qint64 Verification::left(const QString& table, LeftReason reason) const {
    for (const Remainder& remainder : remaining) {
        if (remainder.table == table && remainder.reason == reason)
            return remainder.records;
    }
    return 0;
}

bool Verification::unexplained() const {
    return std::any_of(remaining.begin(), remaining.end(), [](const Remainder& remainder) {
        return remainder.reason == LeftReason::Unknown && remainder.records > 0;
    });
}

bool Verification::holds() const {
    return count(FindingKind::LeftBehind) + count(FindingKind::Gone) +
               count(FindingKind::Returned) + count(FindingKind::ChangedSince) ==
           0;
}

Verification verifyRun(data::Database& database, qint64 run, const VerifyOptions& options) {
    data::RunJournal* journal = database.journal();
    if (journal == nullptr || !journal->run(run))
        throw noRun(run);
    Verification verification;
    verification.run = run;
    FindingList findings(verification, options);
    const std::optional<ChangeDefinition> definition = definitionOfRun(*journal, run);
    try {
        JournalCheck check(database, *journal, run, definition, verification, findings);
        check.run();
        addRehearsal(*journal, run, verification, findings);
        if (definition) {
            const std::optional<RunOutcome> outcome = outcomeOfRun(*journal, run);
            std::set<QString> overLimit = outcome ? outcome->overLimit : std::set<QString>();
            visitLimitedProducts(*journal, run, [&overLimit](const LimitedProduct& product) {
                overLimit.insert(product.number);
            });
            countRemaining(database,
                           {*definition, outcome, check.converted(), check.undone(), overLimit},
                           verification, findings);
        }
    } catch (const FindingList::Cancelled&) {
        verification.cancelled = true;
    }
    return verification;
}

}  // namespace vatchange
