#include "vatchange/report/change_report.h"

#include <QCoreApplication>
#include <QDir>

#include "data/clock.h"
#include "framework/core/moment_text.h"
#include "vatchange/report/log_section.h"
#include "vatchange/report/run_report.h"

namespace vatchange {

namespace {

QString momentText(const QDateTime& moment) {
    return moment.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
}

QString nameOrUnsaved(const QString& name) {
    return name.isEmpty() ? QStringLiteral("tallettamaton määrittely") : name;
}

/// A run without a journal: one that was refused.
void runPart(ReportHtml& html, const RunSummary& run) {
    html.section(QStringLiteral("Viimeisin ajo"), ReportHtml::Page::New);
    html.row(QStringLiteral("Määrittely"), nameOrUnsaved(run.definitionName));
    html.row(QStringLiteral("Alkoi"), momentText(run.started));
    html.row(
        QStringLiteral("Päättyi"),
        QStringLiteral("%1 (kesto %2)")
            .arg(momentText(run.ended), framework::durationText(run.started.secsTo(run.ended))));
    html.row(QStringLiteral("Tulos"), outcomeText(run.result));
    if (run.result.refused)
        html.row(QStringLiteral("Syy"), run.result.refusal);
    html.section(QStringLiteral("Ajon lokirivit"));
    logSection(html, run.logName, readLog(run.logName, run.logFrom, run.logTo));
}

}  // namespace

QString lostLogText(const RunResult& result) {
    return QStringLiteral(
               "Muutosloki jäi vajaaksi, rivejä puuttuu %1. %2. Korjaa syy ennen seuraavaa ajoa; "
               "tämän ajon tulos on raportissa.")
        .arg(countText(result.lostLogLines), result.logProblem);
}

QString outcomeText(const RunResult& result) {
    if (result.cancelled) {
        return QStringLiteral("Muutos keskeytettiin, tuotteita muutettu %1")
            .arg(countText(result.products));
    }
    if (result.refused)
        return QStringLiteral("Muutosta ei tehty");
    if (result.clean())
        return QStringLiteral("Muutos valmis, tuotteita muutettu %1")
            .arg(countText(result.products));
    const bool complete = result.failedSteps == 0 && result.skippedProducts == 0;
    if (complete && result.lostLogLines > 0)
        return QStringLiteral("Muutos tehty, tuotteita muutettu %1, mutta loki jäi vajaaksi")
            .arg(countText(result.products));
    if (complete && result.limitedProducts > 0)
        return QStringLiteral("Muutos tehty, tuotteita muutettu %1, turvarajan vuoksi ohitettu %2")
            .arg(countText(result.products), countText(result.limitedProducts));
    return QStringLiteral("Muutos tehty, mutta kaikki ei onnistunut: katso loki");
}

framework::Report changeReport(data::Database& database, const ChangeReport& report) {
    ReportHtml html;
    html.title(QStringLiteral("ALV muutos: ") + nameOrUnsaved(report.name));
    if (!report.description.isEmpty())
        html.paragraph(report.description);
    describeDefinition(html, report.definition, report.names);
    std::vector<framework::ReportPicture> pictures;
    QString runs;
    if (!report.lastRun) {
        html.section(QStringLiteral("Viimeisin ajo"));
        html.paragraph(QStringLiteral("Tällä lomakkeella ei ole ajettu muutosta."));
    } else if (report.lastRun->result.run == 0) {
        runPart(html, *report.lastRun);
    } else {
        ReportContext context{report.company, report.lastRun->logName};
        context.onNewPage = true;
        const auto made = runReport(database, {report.lastRun->result.run}, context);
        runs = made->html;
        pictures = made->pictures;
    }
    return {html.take() + runs, report.company,
            QStringLiteral("ALV muutos: ") + nameOrUnsaved(report.name),
            QStringLiteral("Tulostettu %1. Taksavaihe, versio %2")
                .arg(momentText(data::Clock::now()), QCoreApplication::applicationVersion()),
            pictures};
}

}  // namespace vatchange
