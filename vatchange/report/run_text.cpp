#include "vatchange/report/run_text.h"

#include <QLocale>
#include <algorithm>

#include "framework/core/moment_text.h"
#include "vatchange/journal/stored_verification.h"

namespace vatchange {

namespace {

using data::JournalRun;
using data::RunKind;
using data::RunState;

/// How a run ended, at the end of a line.
QString endingText(const JournalRun& run, const std::optional<StoredVerification>& verified) {
    switch (run.state) {
        case RunState::Running:
            return QStringLiteral("käynnissä");
        case RunState::Interrupted:
            return QStringLiteral("jäi kesken");
        case RunState::Stopped:
            return QStringLiteral("keskeytettiin");
        case RunState::Incomplete:
            return QStringLiteral("jäi vajaaksi");
        case RunState::Errors:
            return QStringLiteral("virheitä");
        case RunState::Accepted:
            return QStringLiteral("hyväksytty sellaisenaan");
        case RunState::PartlyUndone:
            return QStringLiteral("osin peruttu");
        case RunState::Undone:
            return QStringLiteral("peruttu");
        case RunState::Done:
            break;
    }
    return verified && !verified->holds ? QStringLiteral("tarkastuksessa huomattavaa")
                                        : QStringLiteral("ei virheitä");
}

QString counted(qint64 count, const QString& one, const QString& many) {
    return QLocale(QLocale::Finnish).toString(count) + u' ' + (count == 1 ? one : many);
}

}  // namespace

QString definitionText(const JournalRun& run) {
    return run.definition.isEmpty() ? QStringLiteral("tallettamaton määrittely") : run.definition;
}

QString runTitle(const JournalRun& run) {
    const QString title = QStringLiteral("Ajo %1: ").arg(run.number);
    return run.kind == RunKind::Undo
               ? title + QStringLiteral("ajon %1 peruminen").arg(run.undoneRun)
               : title + definitionText(run);
}

QString stateMeaning(const JournalRun& run) {
    switch (run.state) {
        case RunState::Running:
            return QStringLiteral("Ajo on parhaillaan käynnissä.");
        case RunState::Interrupted:
            return QStringLiteral(
                "Ohjelma tai kone sammui kesken ajon. Jatka ajoa, peru se tai hyväksy se "
                "sellaisena kuin se on.");
        case RunState::Stopped:
            return QStringLiteral(
                "Ajo keskeytettiin ennen loppua. Jatka ajoa, peru se tai hyväksy se sellaisena "
                "kuin se on.");
        case RunState::Incomplete:
            return QStringLiteral(
                "Osa tuotteista tai tilauksista jäi muuttamatta. Jatka ajoa, peru se tai hyväksy "
                "se sellaisena kuin se on.");
        case RunState::Errors:
            return QStringLiteral(
                "Ajo tehtiin loppuun, mutta jokin vaihe epäonnistui. Korjaa syy "
                "ja jatka ajoa, tai peru se.");
        case RunState::Accepted:
            return QStringLiteral("Kesken jäänyt ajo hyväksyttiin sellaisena kuin se on.");
        case RunState::PartlyUndone:
            return QStringLiteral("Osa ajon muutoksista on peruttu.");
        case RunState::Undone:
            return QStringLiteral("Ajon muutokset on peruttu.");
        case RunState::Done:
            break;
    }
    return QStringLiteral("Ajo tehtiin loppuun.");
}

QString whoText(const JournalRun& run) {
    return run.user + u'@' + run.computer;
}

QString amountText(const std::vector<ChangedRecords>& records) {
    qint64 products = 0;
    qint64 rows = 0;
    for (const ChangedRecords& table : records) {
        if (table.table.compare(QStringLiteral("TUOTE"), Qt::CaseInsensitive) == 0)
            products = table.records;
        rows += table.records;
    }
    return products > 0 ? counted(products, QStringLiteral("tuote"), QStringLiteral("tuotetta"))
                        : counted(rows, QStringLiteral("rivi"), QStringLiteral("riviä"));
}

QString lastRunText(data::RunJournal& journal) {
    const std::vector<JournalRun> runs = journal.runs();
    if (runs.empty())
        return {};
    // an old run may have been resumed after newer ones
    const JournalRun& last =
        *std::max_element(runs.rbegin(), runs.rend(), [](const JournalRun& a, const JournalRun& b) {
            return (a.ended.isValid() ? a.ended : a.started) <
                   (b.ended.isValid() ? b.ended : b.started);
        });
    const std::optional<StoredVerification> verified = storedVerification(journal, last.number);
    const bool undo = last.kind == RunKind::Undo;
    QStringList parts{
        (undo ? QStringLiteral("Peruttu %1: ajo %2")
                    .arg(framework::momentText(last.started))
                    .arg(last.undoneRun)
              : QStringLiteral("Ajettu %1: ").arg(framework::momentText(last.started)) +
                    definitionText(last))};
    if (verified)
        parts += amountText(verified->records);
    else if (last.rows > 0)
        parts += counted(last.rows, QStringLiteral("rivi"), QStringLiteral("riviä"));
    parts += endingText(last, verified);
    return parts.join(QStringLiteral(", "));
}

}  // namespace vatchange
