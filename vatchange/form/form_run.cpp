#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

#include "company/logs.h"
#include "framework/ui/dialogs.h"
#include "platform/command_line.h"
#include "platform/end_request.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/unfinished_question.h"
#include "vatchange/report/change_report.h"

namespace vatchange {

/// The form as the ports of a run. The run reports every row; the window is updated every 50 ms,
/// four times a second when unattended.
class FormRunPorts : public RunPorts {
  public:
    explicit FormRunPorts(TAlvMuutosLomake& form) : m_form(form) { m_sinceStep.start(); }

    bool unattended() const override { return m_form.unattended(); }
    void NaytaViesti(const QString& text) override {
        if (!unattended())
            flush();
        m_form.NaytaViesti(text);
    }
    void showMessage(const QString& text) override { framework::Dialogs::message(&m_form, text); }
    bool ask(const QString& text) override {
        flush();
        return framework::Dialogs::ask(&m_form, text);
    }
    void log(const QString& line) override { company::WriteAlvMuutosLog(line); }
    void status(const QString& text) override { m_status = text; }
    void stepStatus(const QString& text) override {
        m_status = text;
        m_done = m_total = 0;
        showNow();
    }
    void progress(qint64 done, qint64 total) override {
        if (total != m_total || done < m_done)
            m_sinceStep.restart();
        m_done = done;
        m_total = total;
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
    void showNow() {
        m_form.showProgress(m_status, m_done, m_total, remaining());
        QCoreApplication::processEvents();
        m_sinceEvents.restart();
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
    static constexpr qint64 kEstimateAfterMs = 2000;

    // Time left of the current step at the average speed so far.
    QString remaining() const {
        const qint64 elapsed = m_sinceStep.elapsed();
        if (m_total <= 0 || m_done <= 0 || elapsed < kEstimateAfterMs)
            return {};
        const qint64 seconds = elapsed * (m_total - m_done) / m_done / 1000 + 1;
        return seconds < 90 ? QStringLiteral("jäljellä noin %1 s").arg(seconds)
                            : QStringLiteral("jäljellä noin %1 min").arg((seconds + 59) / 60);
    }

    TAlvMuutosLomake& m_form;
    const qint64 m_eventIntervalMs =
        m_form.unattended() ? kUnattendedEventIntervalMs : kEventIntervalMs;
    QElapsedTimer m_sinceEvents;
    QElapsedTimer m_sinceStep;
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
    if (!unattended() && !chooseOptions(definition.definition, options))
        return std::nullopt;
    m_cancelRequested = false;
    setRunning(true);
    try {
        FormRunPorts ports(*this);
        m_lastRun = runWithSummary(m_database, definition, ports, options);
    } catch (...) {
        setRunning(false);
        showStatus(QStringLiteral("Muutos päättyi virheeseen"));
        throw;
    }
    setRunning(false);
    showStatus(outcomeText(m_lastRun->result));
    if (m_lastRun->result.lostLogLines > 0 && !unattended())
        framework::Dialogs::warning(this, lostLogText(m_lastRun->result));
    if (m_closeWhenDone)
        QTimer::singleShot(0, this, &QWidget::close);
    return m_lastRun->result;
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
    m_content->setEnabled(!running);
    m_exits.dropExits();  // disabled controls lose the focus
    Esikatsele->setEnabled(!running);
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

void TAlvMuutosLomake::showProgress(const QString& status, qint64 done, qint64 total,
                                    const QString& remaining) {
    m_status->setText(m_cancelRequested ? QStringLiteral("Keskeytetään...") : status);
    constexpr int kSteps = 1000;
    if (total > 0) {
        m_progress->setRange(0, kSteps);
        m_progress->setValue(static_cast<int>(done * kSteps / total));
    } else {
        m_progress->setRange(0, 0);
    }
    m_progress->setFormat(remaining.isEmpty() ? QStringLiteral("%p %")
                                              : QStringLiteral("%p %, ") + remaining);
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
