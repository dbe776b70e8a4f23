#include <QCoreApplication>
#include <QHBoxLayout>
#include <QProcess>
#include <QVBoxLayout>

#include "company/batch_list.h"
#include "company/company.h"
#include "framework/ui/company_choice.h"
#include "framework/ui/dialogs.h"
#include "platform/command_line.h"
#include "platform/schedule/task_scheduler.h"
#include "shell/main_form.h"
#include "shell/schedule/schedule_dialog.h"
#include "shell/schedule/schedule_line.h"

namespace shell {

namespace {
constexpr int kLineGap = 4;
}

QLayout* TMainForm::buildHead() {
    m_company = new QLabel(QStringLiteral("Yritys"), this);
    m_company->setObjectName(QStringLiteral("Yritys"));
    m_company->setTextFormat(Qt::PlainText);
    m_company->setWordWrap(true);
    QFont large = m_company->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    large.setBold(true);
    m_company->setFont(large);

    m_companies = new QPushButton(QStringLiteral("&Yritykset..."), this);
    m_companies->setObjectName(QStringLiteral("Yritykset"));
    m_companies->setToolTip(QStringLiteral("Vaihtaa yritystä, lisää ja poistaa yrityksiä"));
    m_companies->setAutoDefault(true);
    connect(m_companies, &QPushButton::clicked, this, &TMainForm::companiesClick);
    auto* head = new QHBoxLayout;
    head->addWidget(m_company, 1);
    head->addWidget(buildBackupButton(), 0, Qt::AlignTop);
    head->addWidget(m_companies, 0, Qt::AlignTop);
    return head;
}

// Lines about this company that appear when there is something to tell.
QLayout* TMainForm::buildStatus() {
    m_lastRun = new QLabel(this);
    m_lastRun->setObjectName(QStringLiteral("ViimeisinAjo"));
    m_lastRun->setTextFormat(Qt::PlainText);
    m_lastRun->setWordWrap(true);
    m_lastRun->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_lastRun->hide();
    m_scheduleLine = new ScheduleLine(this);
    m_feedback = new QLabel(this);
    m_feedback->setObjectName(QStringLiteral("Tila"));
    m_feedback->setTextFormat(Qt::PlainText);
    m_feedback->setWordWrap(true);
    m_feedback->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_feedback->hide();
    auto* lines = new QVBoxLayout;
    lines->setSpacing(kLineGap);
    lines->addWidget(m_lastRun);
    lines->addWidget(m_scheduleLine);
    lines->addWidget(m_feedback);
    connect(m_scheduleLine, &ScheduleLine::changeWanted, this, &TMainForm::scheduleClick);
    connect(m_scheduleLine, &ScheduleLine::removeWanted, this, &TMainForm::removeScheduleClick);
    return lines;
}

void TMainForm::showFeedback(const QString& text) {
    m_feedback->setText(text);
    m_feedback->setVisible(!text.isEmpty());
}

void TMainForm::scheduleClick() {
    framework::reportErrors(this, [this] {
        const company::BatchList saved = company::readBatchList(company::batchListToRead());
        if (saved != batchList()) {
            framework::Dialogs::warning(
                this, QStringLiteral("Eräajon luettelossa on muutoksia, joita ei ole talletettu. "
                                     "Paina ensin \"Talleta\"."));
            return;
        }
        if (saved == company::BatchList()) {
            framework::Dialogs::warning(
                this, QStringLiteral("Eräajossa ei ole yhtään määrittelyä. Valitse määrittelyt ja "
                                     "paina \"Talleta\" ennen ajastusta."));
            return;
        }
        if (const QString problem = platform::TaskScheduler::instance().problem();
            !problem.isEmpty()) {
            framework::Dialogs::error(this, problem);
            return;
        }
        ScheduleDialog dialog(company::currentCompany().name, saved, this);
        dialog.exec();
        m_scheduleLine->refresh();
        showFeedback(dialog.removed() ? QStringLiteral("Ajastus poistettiin.") : QString());
    });
}

void TMainForm::removeScheduleClick() {
    framework::reportErrors(this, [this] {
        if (!framework::Dialogs::ask(this, QStringLiteral("Poistetaanko ajastus?")))
            return;
        removeScheduleAndTask(company::currentCompany().name);
        m_scheduleLine->refresh();
        showFeedback(QStringLiteral("Ajastus poistettiin."));
    });
}

// A process has one company: another one gets a process of its own.
void TMainForm::companiesClick() {
    framework::TYritysValinta choice(this);
    const QString chosen = choice.choice();
    const QString current = company::currentCompany().name;
    if (chosen.isEmpty() || chosen == current)
        return;
    if (m_changeForm != nullptr && !m_changeForm->close())
        return;
    QStringList parameters = {chosen};
    for (const QString& parameter : platform::parameters())
        if (parameter.startsWith(QLatin1Char('/')) || parameter.startsWith(QLatin1Char('-')))
            parameters.append(parameter);
    if (QProcess::startDetached(QCoreApplication::applicationFilePath(), parameters))
        close();
    else
        framework::Dialogs::error(this, QStringLiteral("Ohjelmaa ei voitu käynnistää uudelleen."));
}

}  // namespace shell
