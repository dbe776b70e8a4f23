#include <QPushButton>

#include "company/backup.h"
#include "company/company.h"
#include "company/connection_module.h"
#include "company/run_mark.h"
#include "data/engine/run_journal.h"
#include "framework/ui/backup_dialog.h"
#include "framework/ui/dialogs.h"
#include "shell/main_form.h"
#include "vatchange/report/run_text.h"
#include "vatchange/views/history_window.h"

namespace shell {

namespace {

QString lastRun() {
    data::RunJournal* journal = company::companyDatabase().journal();
    return journal == nullptr ? QString() : vatchange::lastRunText(*journal);
}

}  // namespace

QPushButton* TMainForm::buildHistoryButton() {
    m_history = new QPushButton(QStringLiteral("Ajo&historia..."), this);
    m_history->setObjectName(QStringLiteral("Ajohistoria"));
    m_history->setToolTip(QStringLiteral(
        "Yrityksessä tehdyt ajot: raportti, muutokset, tarkastus, jatkaminen ja peruminen"));
    connect(m_history, &QPushButton::clicked, this, &TMainForm::historyClick);
    return m_history;
}

QPushButton* TMainForm::buildBackupButton() {
    auto* backup = new QPushButton(QStringLiteral("&Varmuuskopio..."), this);
    backup->setObjectName(QStringLiteral("Varmuuskopio"));
    backup->setToolTip(QStringLiteral("Ottaa varmuuskopion tai palauttaa tietokannan sellaisesta"));
    backup->setAutoDefault(true);
    connect(backup, &QPushButton::clicked, this, &TMainForm::backupClick);
    return backup;
}

void TMainForm::refreshLastRun() {
    QString text;
    try {
        text = lastRun();
    } catch (const std::exception& error) {
        text = QStringLiteral("Viimeisintä ajoa ei tiedetä: ") + data::errorText(error);
    }
    m_lastRun->setText(text);
    m_lastRun->setVisible(!text.isEmpty());
}

QString TMainForm::alreadyRunAdvice() {
    QString text = kAlreadyRunText + QStringLiteral("\r\r");
    const QString last = lastRun();
    const QString mark = company::executionMarkText(company::companyDatabase());
    text += (last.isEmpty() ? QStringLiteral("Ajomerkintä on kirjoitettu %1").arg(mark) : last) +
            QStringLiteral(".\r\r");
    return text +
           QStringLiteral(
               "Ajohistoria näyttää, mitä on muutettu, ja sieltä kesken jääneen ajon voi jatkaa "
               "ja ajon perua. Uuden muutoksen voi ajaa, kun ajomerkintä on poistettu "
               "(\"Poista ajomerkintä\").");
}

void TMainForm::historyClick() {
    framework::reportErrors(this, [this] {
        auto* window = new vatchange::HistoryWindow(company::companyDatabase(), this);
        connect(window, &vatchange::HistoryWindow::changed, this, &TMainForm::refreshLastRun);
        window->show();
    });
}

void TMainForm::backupClick() {
    const QString name = company::currentCompany().name;
    if (const QString problem = company::backupProblem(name); !problem.isEmpty()) {
        framework::Dialogs::message(this, problem);
        return;
    }
    const std::optional<company::Backup> last = company::lastBackup(name);
    const QString text =
        last ? QStringLiteral("Yrityksen viimeisin varmuuskopio:\r") + framework::backupText(*last)
             : QStringLiteral("Yrityksestä ei ole otettu varmuuskopiota tällä ohjelmalla.");
    switch (framework::Dialogs::choose(
        this, text,
        {QStringLiteral("&Ota varmuuskopio..."), QStringLiteral("&Palauta varmuuskopiosta..."),
         QStringLiteral("&Sulje")})) {
        case 0:
            if (const auto made = framework::takeBackup(this))
                showFeedback(QStringLiteral("Varmuuskopio on otettu ja tarkastettu: ") +
                             framework::backupText(*made));
            break;
        case 1:
            restoreClick();
            break;
        default:
            break;
    }
}

void TMainForm::restoreClick() {
    if (m_changeForm != nullptr && !m_changeForm->close())
        return;
    // the next use opens the database again, the restored one or the one from before
    const bool restored =
        framework::restoreBackup(this, [] { company::TZavDbConnectionModule::shutDown(); });
    if (!restored)
        return;
    const QStringList problems = alusta();
    refreshLastRun();
    if (!problems.isEmpty())
        framework::Dialogs::error(this, problems.join(QLatin1Char('\n')));
}

}  // namespace shell
