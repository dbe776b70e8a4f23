#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include "company/company.h"
#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/run_estimate.h"
#include "vatchange/journal/history.h"
#include "vatchange/rehearsal/rehearsal.h"
#include "vatchange/report/change_report.h"
#include "vatchange/report/run_report.h"
#include "vatchange/views/changes_window.h"
#include "vatchange/views/run_problems.h"

namespace vatchange {

namespace {

constexpr int kEventIntervalMs = 50;

QString question(const RehearsalRoom& room, const std::optional<data::JournalRun>& unfinished) {
    QString text = QStringLiteral(
        "Koeajo tekee muutoksen yrityksen kopiolla. Yrityksen tiedot ja lokit eivät muutu, ja muut "
        "voivat käyttää yritystä sen aikana.\r\r");
    text += room.text() + QStringLiteral(".\r");
    text +=
        QStringLiteral("Kopio poistetaan lopuksi. Tulokset jäävät kansioon %1.").arg(room.folder);
    if (unfinished)
        text += QStringLiteral("\r\rMäärittelyllä on keskeneräinen %1: koeajetaan sen jatkaminen.")
                    .arg(runText(*unfinished));
    return text;
}

void copyReport(const QString& from, const QString& to) {
    QFile::remove(to);
    QFile report(from);
    if (!report.copy(to))
        throw data::DataError(data::ErrorKind::Io, to, report.errorString());
}

}  // namespace

/// Shows the progress of long work in the form's status line; false once "Keskeytä" was pressed.
class FormProgress {
  public:
    explicit FormProgress(TAlvMuutosLomake& form) : m_form(form) { m_sinceBegin.start(); }

    bool show(const QString& what, double share) {
        if (!m_sinceEvents.isValid() || m_sinceEvents.elapsed() >= kEventIntervalMs) {
            m_form.showProgress(what, share, {}, leftText(secondsLeft(share)));
            QCoreApplication::processEvents();
            m_sinceEvents.restart();
        }
        return !m_form.m_cancelRequested;
    }

  private:
    qint64 secondsLeft(double share) const {
        constexpr qint64 kEstimateAfterMs = 2000;
        const auto elapsed = static_cast<double>(m_sinceBegin.elapsed());
        if (share <= 0 || elapsed < kEstimateAfterMs)
            return -1;
        return static_cast<qint64>(elapsed * (1 - share) / share / 1000) + 1;
    }

    TAlvMuutosLomake& m_form;
    QElapsedTimer m_sinceBegin;
    QElapsedTimer m_sinceEvents;
};

void TAlvMuutosLomake::KoeajoClick() {
    if (m_running || !acceptTyped())
        return;
    const LoadedDefinition definition = definitionToRun();
    RunOptions options;
    std::optional<data::JournalRun> unfinished;
    if (data::RunJournal* journal = m_database.journal())
        unfinished = unfinishedRun(*journal, loadedDefinition().name, definition.definition);
    if (unfinished)
        options.resume = unfinished->number;
    const RehearsalRoom room = rehearsalRoom();
    if (!room.enough()) {
        framework::Dialogs::warning(
            this, QStringLiteral("Koeajolle ei ole tilaa levyllä. ") + room.text() + u'.');
        return;
    }
    if (company::runGoesOn()) {
        framework::Dialogs::warning(this, kOtherRunText);
        return;
    }
    if (framework::Dialogs::choose(
            this, question(room, unfinished),
            {QStringLiteral("&Aloita koeajo"), QStringLiteral("&Peruuta")}) != 0)
        return;
    m_cancelRequested = false;
    setRunning(true);
    RehearsalOutcome outcome;
    const bool succeeded = reportProblems(this, [&] { outcome = rehearse(definition, options); });
    setRunning(false);
    showStatus(succeeded ? outcome.status : QStringLiteral("Koeajo päättyi virheeseen"));
    if (m_closeWhenDone) {
        QTimer::singleShot(0, this, &QWidget::close);
        return;
    }
    if (!outcome.message.isEmpty())
        framework::Dialogs::warning(this, outcome.message);
    if (outcome.list)
        showChanges(outcome.list, outcome.context, this);
}

TAlvMuutosLomake::RehearsalOutcome TAlvMuutosLomake::rehearse(const LoadedDefinition& definition,
                                                              const RunOptions& options) {
    const QString stopped = QStringLiteral("Koeajo keskeytettiin");
    std::unique_ptr<Rehearsal> rehearsal;
    {
        FormProgress progress(*this);
        rehearsal = Rehearsal::begin([&progress](const QString& what, qint64 done, qint64 total) {
            return progress.show(
                what, total > 0 ? static_cast<double>(done) / static_cast<double>(total) : -1);
        });
    }
    if (!rehearsal)
        return {stopped, {}, {}, {}};

    const std::unique_ptr<RunPorts> ports = runPorts();
    const RunSummary summary = rehearsal->run(definition, *ports, options);
    const RunResult& result = summary.result;
    if (result.refused || result.cancelled) {
        rehearsal->discard();
        return {
            result.refused ? QStringLiteral("Koeajoa ei tehty") : stopped, result.refusal, {}, {}};
    }

    const std::vector<qint64> runs{result.run};
    RehearsalOutcome outcome;
    outcome.status = QStringLiteral("Koeajo: ") + outcomeText(result);
    outcome.message = result.failures.join(u'\r');
    outcome.context.company = company::currentCompany().name;
    outcome.context.title = rehearsalTitle(rehearsal->database(), runs);
    FormProgress progress(*this);
    rehearsal->writeResults(runs);
    const QString report = rehearsal->file(Rehearsal::kReportFile);
    ReportContext context;
    context.company = outcome.context.company;
    context.logName = summary.logName;
    context.title = outcome.context.title;
    context.notes = {kRehearsalNote};
    context.progress = [&progress](double share) {
        return progress.show(QStringLiteral("Kirjoitetaan raporttia"), share);
    };
    const bool whole = writeRunReport(rehearsal->database(), runs, context, report);
    outcome.context.writePdf = [report](const QString& file) { copyReport(report, file); };
    outcome.list = std::make_shared<ChangeList>();
    // the window shows them when the copy is gone
    if (!whole || !ChangeReader(rehearsal->database(), runs, *outcome.list)
                       .readAll([&progress](double share) {
                           return progress.show(QStringLiteral("Luetaan muutoksia"), share);
                       })) {
        rehearsal->discard();
        return {stopped, {}, {}, {}};
    }
    return outcome;
}

}  // namespace vatchange
