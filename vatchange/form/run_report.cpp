#include "vatchange/form/run_report.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>

#include "data/clock.h"
#include "vatchange/journal/verification_text.h"

namespace vatchange {

namespace {

QString momentText(const QDateTime& moment) {
    return moment.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
}

QString durationText(const RunSummary& run) {
    const qint64 seconds = run.started.secsTo(run.ended);
    if (seconds < 60)
        return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return QStringLiteral("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
    return QStringLiteral("%1 h %2 min").arg(seconds / 3600).arg(seconds / 60 % 60);
}

QString nameOrUnsaved(const QString& name) {
    return name.isEmpty() ? QStringLiteral("tallettamaton määrittely") : name;
}

void counts(ReportHtml& html, const RunResult& result) {
    html.section(QStringLiteral("Muutetut rivit"));
    if (result.changed.empty()) {
        html.paragraph(QStringLiteral("Ajo ei muuttanut mitään."));
        return;
    }
    html.beginTable({QStringLiteral("Mitä"), QStringLiteral("Rivejä")}, 1);
    for (const ChangedRows& changed : result.changed)
        html.tableRow({changed.what, countText(changed.rows)});
}

void problemsPart(ReportHtml& html, const RunResult& result) {
    if (!result.failures.isEmpty()) {
        html.section(QStringLiteral("Epäonnistuneet vaiheet"));
        for (const QString& failure : result.failures)
            html.paragraph(failure);
    }
    if (result.skippedProducts > 0) {
        html.section(QStringLiteral("Lukittuina ohitetut tuotteet"));
        QString text = result.skippedNumbers.join(QStringLiteral(", "));
        if (const qint64 more = result.skippedProducts - result.skippedNumbers.size(); more > 0)
            text += QStringLiteral(" ja %1 muuta, katso loki").arg(countText(more));
        html.paragraph(text);
        html.paragraph(
            QStringLiteral("Tuotteet olivat auki toisessa ohjelmassa. Sulje ne ja aja määrittely "
                           "uudelleen. Ota siitä "
                           "sitä ennen pois asiakashinnastot, kampanjat, toistuvaislaskutus ja "
                           "määräalennukset, jos "
                           "niiden rivejä on jo muutettu: uusi ajo kertoisi ne uudestaan."));
    }
}

void limitedPart(ReportHtml& html, const RunResult& result) {
    if (result.limitedProducts == 0)
        return;
    html.section(QStringLiteral("Turvarajan vuoksi ohitetut tuotteet"));
    QString text = result.limitedNumbers.join(QStringLiteral(", "));
    if (const qint64 more = result.limitedProducts - result.limitedNumbers.size(); more > 0)
        text += QStringLiteral(" ja %1 muuta, katso loki").arg(countText(more));
    html.paragraph(text);
    html.paragraph(QStringLiteral(
        "Näiden hinta olisi muuttunut enemmän kuin määrittely sallii. Hinnat ovat lokissa. Korjaa "
        "hinnat tai aja tuotteet määrittelyllä, jonka turvaraja on suurempi. Ota siitä pois "
        "määräalennukset: ne on jo muutettu."));
}

void verificationPart(ReportHtml& html, const RunResult& result) {
    if (!result.verification)
        return;
    html.section(QStringLiteral("Tarkastus"));
    for (const QString& line : verificationTextFinnish(*result.verification))
        html.paragraph(line);
}

void lostLines(ReportHtml& html, const RunResult& result) {
    if (result.lostLogLines == 0)
        return;
    html.section(QStringLiteral("Vajaa loki"));
    html.paragraph(lostLogText(result));
}

void logPart(ReportHtml& html, const RunSummary& run) {
    const QString logName = QDir::toNativeSeparators(run.logName);
    html.section(QStringLiteral("Ajon lokirivit"));
    const LogExcerpt log = logLines(run);
    if (!log.problem.isEmpty()) {
        html.paragraph(QStringLiteral("Lokia %1 ei voitu lukea: %2").arg(logName, log.problem));
        return;
    }
    html.paragraph(QStringLiteral("Loki: ") + logName);
    for (const QString& line : log.first)
        html.logLine(line);
    if (log.leftOut > 0) {
        html.paragraph(QStringLiteral("Tästä on jätetty pois %1 riviä. Ne ovat lokissa %2.")
                           .arg(countText(log.leftOut), logName));
    }
    for (const QString& line : log.last)
        html.logLine(line);
}

void runPart(ReportHtml& html, const ChangeReport& report) {
    const RunSummary& run = *report.lastRun;
    html.section(QStringLiteral("Viimeisin ajo"), ReportHtml::Page::New);
    html.row(QStringLiteral("Määrittely"), nameOrUnsaved(run.definitionName));
    html.row(QStringLiteral("Alkoi"), momentText(run.started));
    html.row(QStringLiteral("Päättyi"),
             QStringLiteral("%1 (kesto %2)").arg(momentText(run.ended), durationText(run)));
    html.row(QStringLiteral("Tulos"), outcomeText(run.result));
    if (run.result.refused)
        html.row(QStringLiteral("Syy"), run.result.refusal);
    html.row(QStringLiteral("Ajomerkintä"), run.result.markWritten
                                                ? QStringLiteral("kirjoitettu")
                                                : QStringLiteral("ei kirjoitettu"));
    counts(html, run.result);
    problemsPart(html, run.result);
    limitedPart(html, run.result);
    verificationPart(html, run.result);
    lostLines(html, run.result);
    if (run.definition != report.definition) {
        html.section(QStringLiteral("Ajettu määrittely"));
        html.paragraph(
            QStringLiteral("Lomakkeen arvoja on muutettu ajon jälkeen. Ajo tehtiin näillä:"));
        describeDefinition(html, run.definition, report.names);
    }
    logPart(html, run);
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

framework::Report changeReport(const ChangeReport& report) {
    ReportHtml html;
    html.title(QStringLiteral("ALV muutos: ") + nameOrUnsaved(report.name));
    if (!report.description.isEmpty())
        html.paragraph(report.description);
    describeDefinition(html, report.definition, report.names);
    if (report.lastRun) {
        runPart(html, report);
    } else {
        html.section(QStringLiteral("Viimeisin ajo"));
        html.paragraph(QStringLiteral("Tällä lomakkeella ei ole ajettu muutosta."));
    }
    return {html.take(), report.company,
            QStringLiteral("ALV muutos: ") + nameOrUnsaved(report.name),
            QStringLiteral("Tulostettu %1. Taksavaihe, versio %2")
                .arg(momentText(data::Clock::now()), QCoreApplication::applicationVersion())};
}

}  // namespace vatchange
