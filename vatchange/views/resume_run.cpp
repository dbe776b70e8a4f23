#include "vatchange/views/resume_run.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "company/logs.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/work_dialog.h"
#include "platform/command_line.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/report/change_report.h"
#include "vatchange/report/run_text.h"

namespace vatchange {

namespace {

/// A progress dialog as the ports of a run.
class DialogRunPorts : public RunPorts {
  public:
    DialogRunPorts(framework::WorkDialog& work, data::Database& database, QString definition)
        : m_work(work), m_database(database), m_definition(std::move(definition)) {}

    bool unattended() const override { return false; }
    void NaytaViesti(const QString& text) override {
        company::WriteAlvMuutosLog(text);
        flush();
        showMessage(text);
    }
    /// The message at the end of the run tells all.
    void stepFinished(const QString& text) override { log(text); }
    void showMessage(const QString& text) override { framework::Dialogs::message(owner(), text); }
    bool ask(const QString& text) override {
        flush();
        return framework::Dialogs::ask(owner(), text);
    }
    void log(const QString& line) override { company::WriteAlvMuutosLog(line); }
    void status(const QString& text) override { m_status = text; }
    void progress(qint64 done, qint64 total) override {
        m_done = done;
        m_total = total;
    }
    void processEvents() override { m_work.step(m_status, m_done, m_total); }
    bool cancelled() const override { return m_work.cancelled(); }
    QString programFileName() const override {
        return QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    }
    bool skipEarlyDateCheck() const override { return platform::hasSwitch(QStringLiteral("/EP")); }
    QString definitionName() const override { return m_definition; }

  private:
    /// The dialog once it is seen: a question must not lie under it.
    QWidget* owner() const {
        return m_work.isVisible() ? static_cast<QWidget*>(&m_work) : m_work.parentWidget();
    }

    /// Before a person is waited for.
    void flush() {
        try {
            m_database.flush();
        } catch (const std::exception& error) {
            log(QStringLiteral("Virhe muutosten tallennuksessa: ") + data::errorText(error));
        }
    }

    framework::WorkDialog& m_work;
    data::Database& m_database;
    QString m_definition;
    QString m_status;
    qint64 m_done = 0;
    qint64 m_total = 0;
};

}  // namespace

std::optional<RunResult> resumeWithProgress(QWidget* parent, data::Database& database,
                                            const data::JournalRun& run) {
    const std::optional<ChangeDefinition> definition =
        definitionOfRun(*database.journal(), run.number);
    if (!definition) {
        framework::Dialogs::error(
            parent, QStringLiteral("Ajon määrittely puuttuu ajopäiväkirjasta, joten ajoa ei voi "
                                   "jatkaa."));
        return std::nullopt;
    }
    RunResult result;
    {
        framework::WorkDialog work(parent, runTitle(run));
        DialogRunPorts ports(work, database, run.definition);
        result = runChange(database, {*definition, {}}, ports, {run.number, run.batch});
    }
    if (!result.refused)  // the reason has been shown
        framework::Dialogs::message(parent, outcomeText(result));
    return result;
}

}  // namespace vatchange
