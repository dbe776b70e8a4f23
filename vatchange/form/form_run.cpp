#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

#include "company/logs.h"
#include "framework/ui/dialogs.h"
#include "platform/command_line.h"
#include "platform/end_request.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/run_estimate.h"
#include "vatchange/form/unfinished_question.h"
#include "vatchange/rehearsal/comparison.h"
#include "vatchange/report/change_report.h"

namespace vatchange {

namespace {

constexpr int kPassingMessageSeconds = 30;

}  // namespace

/// The form as the ports of a run. The run reports every row; the window is updated every 50 ms,
/// four times a second when unattended.
class FormRunPorts : public RunPorts {
  public:
    explicit FormRunPorts(TAlvMuutosLomake& form) : m_form(form) { m_sinceBegin.start(); }

    bool unattended() const override { return m_form.unattended(); }
    void NaytaViesti(const QString& text) override {
        const Waiting waiting(*this);
        m_form.NaytaViesti(text);
    }
    void stepFinished(const QString& text) override {
        m_status = text;
        m_done = m_total;
        m_estimate.progress(1, 1);
        const Waiting waiting(*this);
        company::WriteAlvMuutosLog(text);
        if (!unattended())
            framework::Dialogs::passingMessage(&m_form, text, kPassingMessageSeconds);
    }
    void showMessage(const QString& text) override {
        const Waiting waiting(*this);
        framework::Dialogs::message(&m_form, text);
    }
    bool ask(const QString& text) override {
        const Waiting waiting(*this);
        return framework::Dialogs::ask(&m_form, text);
    }
    void log(const QString& line) override { company::WriteAlvMuutosLog(line); }
    void status(const QString& text) override { m_status = text; }
    void plan(const std::vector<PlannedStep>& steps) override { m_estimate.plan(steps); }
    void beginStep(RunStep step) override {
        m_done = m_total = 0;
        m_estimate.begin(step, elapsed());
    }
    void stepStatus(const QString& text) override {
        m_status = text;
        m_done = m_total = 0;
        showNow();
    }
    void progress(qint64 done, qint64 total) override {
        m_done = done;
        m_total = total;
        m_estimate.progress(done, total);
    }
    void processEvents() override {
        if (m_sinceEvents.isValid() && m_sinceEvents.elapsed() < m_eventIntervalMs)
            return;
        showNow();
    }
    bool cancelled() const override {
        return m_form.m_cancelRequested || (m_form.unattended() && platform::endRequested());
    }
    QString programFileName() const override {
        return QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    }
    QString definitionName() const override { return m_form.loadedDefinition().name; }
    bool skipEarlyDateCheck() const override { return platform::hasSwitch(QStringLiteral("/EP")); }

  private:
    /// While a person is waited for: what is done is durable and shown, and the time does not
    /// count.
    class Waiting {
      public:
        explicit Waiting(FormRunPorts& ports) : m_ports(ports), m_from(ports.elapsed()) {
            if (!ports.unattended()) {
                ports.flush();
                ports.showProgress();
            }
        }
        ~Waiting() { m_ports.m_waited += m_ports.elapsed() - m_from; }
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;

      private:
        FormRunPorts& m_ports;
        const qint64 m_from;
    };

    qint64 elapsed() const { return m_sinceBegin.elapsed() - m_waited; }

    void showNow() {
        showProgress();
        QCoreApplication::processEvents();
        m_sinceEvents.restart();
    }

    // Of the whole run; without a plan, of the present step.
    void showProgress() {
        if (m_estimate.isPlanned()) {
            m_form.showProgress(m_status, m_estimate.done(), m_estimate.stepText(),
                                leftText(m_estimate.secondsLeft(elapsed())));
        } else {
            const double share =
                m_total > 0 ? static_cast<double>(m_done) / static_cast<double>(m_total) : -1;
            m_form.showProgress(m_status, share, {}, {});
        }
    }

    /// Before a person is waited for.
    void flush() {
        try {
            m_form.m_database.flush();
        } catch (const std::exception& error) {
            log(QStringLiteral("Virhe muutosten tallennuksessa: ") + data::errorText(error));
        }
    }

    static constexpr qint64 kEventIntervalMs = 50;
    static constexpr qint64 kUnattendedEventIntervalMs = 250;

    TAlvMuutosLomake& m_form;
    const qint64 m_eventIntervalMs =
        m_form.unattended() ? kUnattendedEventIntervalMs : kEventIntervalMs;
    RunEstimate m_estimate;
    QElapsedTimer m_sinceEvents;
    QElapsedTimer m_sinceBegin;
    qint64 m_waited = 0;
    QString m_status;
    qint64 m_done = 0;
    qint64 m_total = 0;
};

std::optional<RunResult> TAlvMuutosLomake::EsikatseleClick(RunOptions options) {
    if (m_running)
        return std::nullopt;
    if (!unattended() && !acceptTyped())
        return std::nullopt;

    const LoadedDefinition definition = definitionToRun();
    if (!unattended() &&
        !(chooseOptions(definition.definition, options) && agreesToRun(definition, options)))
        return std::nullopt;
    m_cancelRequested = false;
    setRunning(true);
    try {
        FormRunPorts ports(*this);
        options.compareWithRehearsal = compareWithRehearsal;
        m_lastRun = runWithSummary(m_database, definition, ports, options);
    } catch (...) {
        setRunning(false);
        showStatus(QStringLiteral("Muutos päättyi virheeseen"));
        throw;
    }
    setRunning(false);
    showStatus(outcomeText(m_lastRun->result));
    m_changes->setVisible(m_lastRun->result.run > 0 && !unattended());
    if (m_lastRun->result.lostLogLines > 0 && !unattended())
        framework::Dialogs::warning(this, lostLogText(m_lastRun->result));
    if (m_closeWhenDone)
        QTimer::singleShot(0, this, &QWidget::close);
    return m_lastRun->result;
}

std::unique_ptr<RunPorts> TAlvMuutosLomake::runPorts() {
    return std::make_unique<FormRunPorts>(*this);
}

bool TAlvMuutosLomake::chooseOptions(const ChangeDefinition& definition, RunOptions& options) {
    std::optional<RunOptions> chosen;
    framework::reportErrors(this, [&] {
        chosen = askAboutUnfinished(this, m_database, loadedDefinition().name, definition);
    });
    if (chosen)
        options = *chosen;
    return chosen.has_value();
}

void TAlvMuutosLomake::setRunning(bool running) {
    m_running = running;
    m_count.stop();  // a run changes what is counted
    if (!running)
        m_edited.start();
    m_findings->setEnabled(!running);
    m_changes->setEnabled(!running);
    m_content->setEnabled(!running);
    m_groups.vatClasses->setEnabled(!running);  // may stand beside the content
    m_exits.dropExits();                        // disabled controls lose the focus
    Esikatsele->setEnabled(!running);
    m_rehearse->setEnabled(!running);
    m_close->setEnabled(!running);
    m_interrupt->setEnabled(running);
    m_progress->setVisible(running);
    m_progress->setRange(0, 0);
    m_progress->setFormat({});
    if (!running && isActiveWindow())
        LatausCombo->setFocus();  // the key that closed a message must not start a second run
    Q_EMIT runningChanged(running);
}

void TAlvMuutosLomake::showStatus(const QString& text) {
    m_status->setText(text);
}

void TAlvMuutosLomake::showProgress(const QString& status, double share, const QString& step,
                                    const QString& left) {
    m_status->setText(m_cancelRequested ? QStringLiteral("Keskeytetään...") : status);
    constexpr int kParts = 1000;
    m_progress->setRange(0, share < 0 ? 0 : kParts);
    if (share >= 0)
        m_progress->setValue(static_cast<int>(share * kParts));
    QStringList texts = {step, QStringLiteral("%p %"), left};
    texts.removeAll(QString());
    m_progress->setFormat(texts.join(QStringLiteral(", ")));
}

bool TAlvMuutosLomake::confirmClosing() {
    if (!unattended() &&
        framework::Dialogs::ask(this, QStringLiteral("Muutos on kesken.\rKeskeytetäänkö muutos ja "
                                                     "suljetaanko lomake?"))) {
        m_cancelRequested = true;
        m_closeWhenDone = true;
    }
    return !m_running;  // the run may have ended while the question was open
}

}  // namespace vatchange
