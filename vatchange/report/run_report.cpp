#include "vatchange/report/run_report.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include "data/clock.h"
#include "framework/core/moment_text.h"
#include "vatchange/changes/change_reader.h"
#include "vatchange/journal/rehearsal_note.h"
#include "vatchange/journal/run_outcome.h"
#include "vatchange/journal/run_refused.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/journal/stored_verification.h"
#include "vatchange/journal/verification_text.h"
#include "vatchange/report/change_sections.h"
#include "vatchange/report/company_names.h"
#include "vatchange/report/log_excerpt.h"
#include "vatchange/report/log_section.h"
#include "vatchange/report/run_text.h"

namespace vatchange {

namespace {

using data::JournalRun;
using data::RunKind;

QString exactMoment(const QDateTime& moment) {
    return moment.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
}

qint64 secondsOf(const std::vector<RunAttempt>& attempts) {
    qint64 seconds = 0;
    for (const RunAttempt& attempt : attempts)
        seconds += attempt.seconds();
    return seconds;
}

constexpr size_t kListedDifferences = 100;

/// "12.40 -> 12.55"; empty for what did not change the field.
QString differenceText(const QString& before, const QString& after) {
    return before.isEmpty() && after.isEmpty() ? QString()
                                               : QStringLiteral("%1 -> %2").arg(before, after);
}

/// Builds the report of some runs, one section after the other.
class RunReport {
  public:
    RunReport(data::Database& database, const std::vector<qint64>& runs,
              const ReportContext& context)
        : m_database(database), m_journal(requireJournal(database)), m_context(context) {
        for (const qint64 run : runs)
            m_runs.push_back(requireRun(m_journal, run, EvenRunning::Yes));
    }

    std::optional<framework::Report> make() {
        const QString title = m_context.title.isEmpty() ? ownTitle() : m_context.title;
        m_html.title(title, m_context.onNewPage ? ReportHtml::Page::New : ReportHtml::Page::Same);
        for (const QString& note : m_context.notes)
            m_html.paragraph(note);
        if (m_runs.size() > 1)
            listRuns();
        for (size_t i = 0; i < m_runs.size(); ++i) {
            m_current = i;
            if (!tell(m_runs[i], m_runs.size() > 1))
                return std::nullopt;
        }
        return framework::Report{
            m_html.take(), m_context.company, title,
            QStringLiteral("Tulostettu %1. Taksavaihe, versio %2")
                .arg(exactMoment(data::Clock::now()), QCoreApplication::applicationVersion()),
            std::move(m_pictures)};
    }

  private:
    QString ownTitle() const {
        if (m_runs.size() == 1)
            return runTitle(m_runs.front());
        QStringList names;
        for (const JournalRun& run : m_runs)
            names += definitionText(run);
        return QStringLiteral("Eräajo: ") + names.join(QStringLiteral(", "));
    }

    void listRuns() {
        m_html.section(QStringLiteral("Ajot"));
        m_html.beginTable(
            {QStringLiteral("Ajo"), QStringLiteral("Määrittely"), QStringLiteral("Alkoi"),
             QStringLiteral("Kesto"), QStringLiteral("Tulos"), QStringLiteral("Muutettu")},
            1);
        for (const JournalRun& run : m_runs)
            m_html.tableRow({QString::number(run.number), definitionText(run),
                             framework::momentText(run.started),
                             framework::durationText(secondsOf(runAttempts(m_journal, run))),
                             stateName(run.state), countText(run.rows)});
    }

    /// @return false if the user cancelled.
    bool tell(const JournalRun& run, bool ownPage) {
        summary(run, ownPage);
        ChangeList list;
        if (!changes(run, list))
            return false;
        failures(run);
        rehearsal(run);
        verification(run);
        definition(run);
        log(run);
        return true;
    }

    void summary(const JournalRun& run, bool ownPage) {
        using Page = ReportHtml::Page;
        const std::vector<RunAttempt> attempts = runAttempts(m_journal, run);
        m_html.section(ownPage ? runTitle(run) : QStringLiteral("Yhteenveto"),
                       ownPage ? Page::New : Page::Same);
        m_html.row(QStringLiteral("Yritys"), m_context.company);
        m_html.row(run.kind == RunKind::Undo ? QStringLiteral("Peruttu ajo")
                                             : QStringLiteral("Määrittely"),
                   run.kind == RunKind::Undo
                       ? QStringLiteral("%1 (%2)").arg(run.undoneRun).arg(definitionText(run))
                       : definitionText(run));
        if (run.batch != 0 && run.batch != run.number)
            m_html.row(QStringLiteral("Eräajo"),
                       QStringLiteral("sama kuin ajon %1").arg(run.batch));
        m_html.row(QStringLiteral("Ajaja"), whoText(run));
        m_html.row(QStringLiteral("Alkoi"), exactMoment(run.started));
        if (run.ended.isValid())
            m_html.row(
                QStringLiteral("Päättyi"),
                QStringLiteral("%1 (kesto %2)")
                    .arg(exactMoment(run.ended), framework::durationText(secondsOf(attempts))));
        m_html.row(QStringLiteral("Tulos"),
                   stateName(run.state) + QStringLiteral(". ") + stateMeaning(run));
        const RunAttempt& first = attempts.front();
        m_html.row(QStringLiteral("Varmuuskopio ennen ajoa"),
                   first.backupFile.isEmpty()
                       ? QStringLiteral("ei tiedossa")
                       : QStringLiteral("%1, %2").arg(framework::momentText(first.backupWhen),
                                                      QDir::toNativeSeparators(first.backupFile)));
        if (attempts.size() > 1)
            listAttempts(attempts);
    }

    void listAttempts(const std::vector<RunAttempt>& attempts) {
        m_html.beginTable(
            {QStringLiteral("Ajettu osissa"), QStringLiteral("Ajaja"), QStringLiteral("Kesto")}, 1);
        for (const RunAttempt& attempt : attempts)
            m_html.tableRow({exactMoment(attempt.started), attempt.user + u'@' + attempt.computer,
                             attempt.ended.isValid() ? framework::durationText(attempt.seconds())
                                                     : QStringLiteral("katkesi")});
    }

    /// @return false if the user cancelled.
    bool changes(const JournalRun& run, ChangeList& list) {
        try {
            ChangeReader reader(m_database, {run.number}, list);
            const auto runs = static_cast<double>(m_runs.size());
            if (!reader.readAll([&](double share) {
                    return !m_context.progress ||
                           m_context.progress((static_cast<double>(m_current) + share) / runs);
                }))
                return false;
        } catch (const RunRefused& refused) {
            m_html.section(QStringLiteral("Muutokset"));
            m_html.paragraph(refused.finnish());
            return true;
        }
        const ChangeOverview overview = overviewOf(list);
        countSections(m_html, overview);
        pictureSections(m_html, m_pictures, overview);
        findingSections(m_html, list);
        passedOverSections(m_html, list);
        return true;
    }

    void failures(const JournalRun& run) {
        const std::optional<QByteArray> note = m_journal.note(run.number, kOutcomeNote);
        const QStringList texts = note ? outcomeOfNote(*note).failures : QStringList();
        if (!texts.isEmpty()) {
            m_html.section(QStringLiteral("Epäonnistuneet vaiheet"));
            for (const QString& text : texts)
                m_html.paragraph(text);
        }
        qint64 lost = 0;
        for (const RunAttempt& attempt : runAttempts(m_journal, run))
            lost += std::max<qint64>(attempt.lostLogLines, 0);
        if (lost > 0) {
            m_html.section(QStringLiteral("Vajaa loki"));
            m_html.paragraph(
                QStringLiteral("Muutosloki jäi vajaaksi, rivejä puuttuu %1.").arg(countText(lost)));
        }
    }

    void rehearsal(const JournalRun& run) {
        const std::optional<RehearsalComparison> compared = storedComparison(m_journal, run.number);
        if (!compared)
            return;
        m_html.section(QStringLiteral("Vertailu koeajoon"));
        if (compared->differences == 0) {
            m_html.paragraph(
                QStringLiteral("Ajo muutti täsmälleen sen, minkä koeajo %1: %2 kenttää.")
                    .arg(compared->rehearsal, countText(compared->same)));
            return;
        }
        m_html.paragraph(comparisonText(*compared));
        m_html.beginTable({QStringLiteral("Tietue ja kenttä"), QStringLiteral("Koeajossa"),
                           QStringLiteral("Ajossa")});
        const size_t listed = std::min(compared->first.size(), kListedDifferences);
        for (size_t i = 0; i < listed; ++i) {
            const RehearsalDifference& one = compared->first[i];
            m_html.tableRow(
                {QStringLiteral("%1 %2, %3").arg(tableText(one.table), one.key, one.field),
                 differenceText(one.rehearsedBefore, one.rehearsedAfter),
                 differenceText(one.before, one.after)});
        }
        if (const qint64 rest = compared->differences - static_cast<qint64>(listed); rest > 0)
            m_html.paragraph(QStringLiteral("... ja %1 muuta").arg(countText(rest)));
    }

    void verification(const JournalRun& run) {
        std::optional<StoredVerification> stored;
        if (!m_context.verifyAgain)
            stored = storedVerification(m_journal, run.number);
        m_html.section(QStringLiteral("Tarkastus"));
        if (stored) {
            m_html.paragraph(QStringLiteral("Tarkastettu ajon lopuksi %1.")
                                 .arg(framework::momentText(stored->when)));
        } else {
            stored = StoredVerification{
                {}, false, verificationTextFinnish(verifyRun(m_database, run.number)), {}, 0};
            m_html.paragraph(QStringLiteral("Tarkastettu raporttia tehtäessä."));
        }
        for (const QString& line : stored->lines)
            m_html.paragraph(line);
    }

    void definition(const JournalRun& run) {
        const std::optional<ChangeDefinition> used = definitionOfRun(m_journal, run.number);
        if (!used)
            return;
        const std::optional<QByteArray> rates = m_journal.note(run.number, kRatesNote);
        m_html.section(QStringLiteral("Määrittely, jolla ajo tehtiin"));
        m_html.paragraph(definitionText(run));
        describeDefinition(m_html, *used,
                           companyNames(m_database, rates ? ratesOfNote(*rates) : VatRates()));
    }

    void log(const JournalRun& run) {
        m_html.section(QStringLiteral("Ajon lokirivit"));
        m_html.paragraph(QStringLiteral("Loki: ") + QDir::toNativeSeparators(m_context.logName));
        for (const RunAttempt& attempt : runAttempts(m_journal, run))
            logSection(m_html, m_context.logName,
                       logOfAttempt(m_journal, m_context.logName, attempt));
    }

    data::Database& m_database;
    data::RunJournal& m_journal;
    const ReportContext& m_context;
    std::vector<JournalRun> m_runs;
    size_t m_current = 0;
    ReportHtml m_html;
    std::vector<framework::ReportPicture> m_pictures;
};

}  // namespace

std::optional<framework::Report> runReport(data::Database& database,
                                           const std::vector<qint64>& runs,
                                           const ReportContext& context) {
    return RunReport(database, runs, context).make();
}

bool writeRunReport(data::Database& database, const std::vector<qint64>& runs,
                    const ReportContext& context, const QString& fileName) {
    const std::optional<framework::Report> report = runReport(database, runs, context);
    if (!report)
        return false;
    const QString folder = QFileInfo(fileName).absolutePath();
    if (!QDir().mkpath(folder))
        throw data::DataError(data::ErrorKind::Io, folder,
                              QStringLiteral("the folder cannot be made"))
            .inFinnish(QStringLiteral("kansiota ei voi tehdä"));
    framework::writePdf(*report, fileName);
    return true;
}

QString reportFileName(const QDateTime& started, const QString& title) {
    return framework::pdfFileName(started.toString(QStringLiteral("yyyy-MM-dd hhmmss ")) + title);
}

QString reportFileName(data::Database& database, const std::vector<qint64>& runs) {
    const JournalRun first = requireRun(requireJournal(database), runs.front(), EvenRunning::Yes);
    const QString title = runs.size() > 1 ? QStringLiteral("Eräajo")
                          : first.kind == RunKind::Undo
                              ? QStringLiteral("Ajon %1 peruminen").arg(first.undoneRun)
                              : definitionText(first);
    return reportFileName(first.started, title);
}

}  // namespace vatchange
