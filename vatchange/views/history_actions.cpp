#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "company/company.h"
#include "company/logs.h"
#include "company/unfinished_note.h"
#include "data/clock.h"
#include "framework/core/moment_text.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/mail.h"
#include "framework/ui/work_dialog.h"
#include "vatchange/journal/run_chain.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/journal/verification_text.h"
#include "vatchange/report/log_excerpt.h"
#include "vatchange/report/report_html.h"
#include "vatchange/report/run_report.h"
#include "vatchange/report/run_text.h"
#include "vatchange/views/changes_window.h"
#include "vatchange/views/history_window.h"
#include "vatchange/views/resume_run.h"
#include "vatchange/views/run_problems.h"
#include "vatchange/views/text_window.h"
#include "vatchange/views/undo_work.h"

namespace vatchange {

namespace {

using data::JournalRun;
using data::RunKind;
using framework::Dialogs;

constexpr int kShares = 1000;

ReportContext reportContext() {
    ReportContext context;
    context.company = company::currentCompany().name;
    context.logName = QFileInfo(company::AlvMuutosLogName()).absoluteFilePath();
    return context;
}

/// Counts what an undo would do; changes nothing.
class CountingPorts : public UndoPorts {
  public:
    explicit CountingPorts(framework::WorkDialog& work) : m_work(work) {}
    void log(const QString& /*line*/) override {}
    void conflict(const UndoConflict& /*conflict*/) override {}
    void progress(qint64 done, qint64 total) override {
        m_work.step(QStringLiteral("Lasketaan, mitä peruminen palauttaisi"), done, total);
    }
    bool cancelled() override { return m_work.cancelled(); }

  private:
    framework::WorkDialog& m_work;
};

QString undoQuestion(const JournalRun& run, const UndoResult& counted) {
    const auto line = [](qint64 count, const QString& what) {
        return count == 0 ? QString() : QStringLiteral("\r%1 %2").arg(countText(count), what);
    };
    QString text = QStringLiteral("Perutaanko %1?\r").arg(runText(run));
    text += line(counted.restored, QStringLiteral("tietuetta saa arvot, jotka olivat ennen ajoa"));
    text += line(counted.removed, QStringLiteral("ajon lisäämää tietuetta poistetaan"));
    text += line(counted.putBack, QStringLiteral("ajon poistamaa tietuetta lisätään"));
    text += line(counted.conflicts, QStringLiteral("kohtaa jää ennalleen, koska niitä on muutettu "
                                                   "ajon jälkeen; ne luetellaan"));
    text += line(counted.held, QStringLiteral("tietuetta on nyt auki toisessa ohjelmassa"));
    return text + QStringLiteral(
                      "\r\rKassoille, etiketeille ja verkkokauppaan peruminen näkyy "
                      "muutoksena. Perumisen voi itsekin perua.");
}

}  // namespace

std::vector<qint64> HistoryWindow::runsToReport(const JournalRun& run) {
    std::vector<qint64> batch;
    const qint64 first = run.batch != 0 ? run.batch : run.number;
    for (const JournalRun& other : m_database.journal()->runs()) {
        if (other.number == first || other.batch == first)
            batch.push_back(other.number);
    }
    if (batch.size() < 2)
        return {run.number};
    switch (Dialogs::choose(
        this, QStringLiteral("Ajo kuuluu eräajoon. Mistä raportti tehdään?"),
        {QStringLiteral("&Koko eräajosta"), QStringLiteral("&Vain ajosta %1").arg(run.number),
         QStringLiteral("P&eruuta")})) {
        case 0:
            return batch;
        case 1:
            return {run.number};
        default:
            return {};
    }
}

bool HistoryWindow::writeReport(const std::vector<qint64>& runs, const QString& fileName) {
    framework::WorkDialog work(this, QStringLiteral("Raportti"));
    ReportContext context = reportContext();
    context.progress = [&work](double share) {
        return work.step(QStringLiteral("Luetaan ajon muutoksia"),
                         static_cast<qint64>(share * kShares), kShares);
    };
    return writeRunReport(m_database, runs, context, fileName);
}

void HistoryWindow::report() {
    reportProblems(this, [this] {
        const std::vector<qint64> runs = runsToReport(selected()->head);
        if (runs.empty())
            return;
        const QString folder = company::dataFolderFile(QStringLiteral("RAPORTIT"));
        const QString suggested =
            QDir(QFileInfo(folder).isDir() ? folder : company::currentCompany().dataFolder)
                .filePath(reportFileName(m_database, runs));
        const QString file =
            Dialogs::saveFileName(this, QStringLiteral("Talleta raportti"), suggested,
                                  QStringLiteral("PDF-tiedostot (*.pdf)"));
        if (file.isEmpty() || !writeReport(runs, file))
            return;
        const QString shown = QDir::toNativeSeparators(file);
        if (Dialogs::choose(this, QStringLiteral("Raportti on tiedostossa\r%1").arg(shown),
                            {QStringLiteral("&Avaa"), QStringLiteral("&Sulje")}) == 0 &&
            !framework::Desktop::instance().open(QUrl::fromLocalFile(file)))
            Dialogs::error(this, QStringLiteral("Raporttia ei voitu avata: ") + shown);
    });
}

void HistoryWindow::changes() {
    reportProblems(this, [this] {
        const JournalRun run = selected()->head;
        ChangesContext context;
        context.company = company::currentCompany().name;
        context.title = runTitle(run) + QStringLiteral(", ") + framework::momentText(run.started);
        context.run = run.number;
        context.database = &m_database;
        context.writePdf = [this, run](const QString& file) { writeReport({run.number}, file); };
        context.undone = [this] {
            framework::reportErrors(this, [this] { refresh(); });
            Q_EMIT changed();
        };
        showRunChanges({run.number}, context, this);
    });
}

void HistoryWindow::verify() {
    const JournalRun run = selected()->head;
    Verification found;
    {
        framework::WorkDialog work(this, QStringLiteral("Tarkastus"));
        VerifyOptions options;
        options.goOn = [&work] {
            return work.step(QStringLiteral("Verrataan tietokantaa ajopäiväkirjaan"));
        };
        found = verifyRun(m_database, run.number, options);
    }
    if (found.cancelled)
        return;
    showText(this,
             QStringLiteral("Tarkastus %1: ").arg(framework::momentText(data::Clock::now())) +
                 runTitle(run),
             verificationTextFinnish(found));
}

void HistoryWindow::logLines() {
    data::RunJournal& journal = *m_database.journal();
    const JournalRun run = selected()->head;
    const QString logName = reportContext().logName;
    QStringList lines;
    for (const RunAttempt& attempt : runAttempts(journal, run)) {
        const LogExcerpt log = logOfAttempt(journal, logName, attempt);
        if (!log.problem.isEmpty())
            lines += QStringLiteral("Lokia ei voitu lukea: ") + log.problem;
        lines += log.first;
        if (log.leftOut > 0)
            lines += QStringLiteral("... %1 riviä on jätetty pois ...").arg(countText(log.leftOut));
        lines += log.last;
    }
    showText(this, QStringLiteral("Lokirivit: ") + runTitle(run), lines, true);
}

void HistoryWindow::resume() {
    const JournalRun run = selected()->head;
    const QString question =
        run.kind == RunKind::Undo
            ? QStringLiteral("Jatketaanko ajon %1 perumista siitä, mihin se jäi?")
                  .arg(run.undoneRun)
            : QStringLiteral(
                  "Jatketaanko %1?\r\rAjo tehdään loppuun määrittelyllä, jolla se "
                  "alkoi. Rivejä, jotka ajo on jo muuttanut, ei muuteta uudestaan.")
                  .arg(runText(run));
    if (!Dialogs::ask(this, question))
        return;
    if (run.kind == RunKind::Undo) {
        UndoOptions options;
        options.scope = undoScopeOf(*m_database.journal(), run.number);
        undoWithProgress(this, m_database, run.undoneRun, options);
    } else {
        resumeWithProgress(this, m_database, run);
    }
    refresh();
    Q_EMIT changed();
}

void HistoryWindow::undo() {
    const JournalRun run = selected()->head;
    UndoResult counted;
    if (!reportProblems(this, [&] {
            framework::WorkDialog work(this, QStringLiteral("Ajon peruminen"));
            CountingPorts ports(work);
            UndoOptions options;
            options.dryRun = true;
            counted = undoRun(m_database, run.number, options, ports);
        }))
        return;
    if (counted.cancelled || !Dialogs::ask(this, undoQuestion(run, counted)))
        return;
    undoWithProgress(this, m_database, run.number, {});
    refresh();
    Q_EMIT changed();
}

void HistoryWindow::acceptSelected() {
    const JournalRun run = selected()->head;
    const QString name = run.number == 0
                             ? QStringLiteral("vanhan version ajo ") + definitionText(run)
                             : runText(run);
    if (!Dialogs::ask(this, QStringLiteral("Hyväksytäänkö %1 sellaisena kuin se on?\r\rMuuttamatta "
                                           "jääneet rivit jäävät ennalleen, eikä ajoa voi enää "
                                           "jatkaa.")
                                .arg(name)))
        return;
    reportProblems(this, [&] {
        if (run.number == 0)
            company::acceptUnfinishedNote(run.definition);
        else
            acceptRun(m_database, run.number);
        company::WriteAlvMuutosLog(
            QStringLiteral("Huomaa: %1 hyväksyttiin sellaisena kuin se on").arg(name));
    });
    refresh();
    Q_EMIT changed();
}

void HistoryWindow::forget() {
    const JournalRun run = selected()->head;
    if (!Dialogs::ask(this, QStringLiteral("Poistetaanko %1 historiasta?\r\rSen päiväkirja "
                                           "poistetaan: ajoa ei voi sen jälkeen tarkastaa eikä "
                                           "perua. Tiedot jäävät sellaisiksi kuin ne ovat.")
                                .arg(runText(run))))
        return;
    reportProblems(this, [&] { forgetRun(m_database, run.number, false); });
    refresh();
    Q_EMIT changed();
}

}  // namespace vatchange
