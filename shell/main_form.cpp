#include "shell/main_form.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QTextStream>
#include <QTimer>

#include "company/company.h"
#include "company/connection_module.h"
#include "company/logs.h"
#include "company/run_mark.h"
#include "data/error.h"
#include "framework/core/definition_store.h"
#include "framework/ui/definition_window.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "platform/command_line.h"
#include "platform/end_request.h"
#include "shell/batch_papers.h"
#include "shell/log/log_window.h"
#include "shell/schedule/schedule_line.h"
#include "vatchange/journal/run_notes.h"

namespace shell {

using vatchange::TAlvMuutosLomake;

namespace {

/// Rates shown, in the order of the labels.
struct RateOfInterest {
    float percent;
    const char* text;
};
constexpr std::array<RateOfInterest, 4> kRates = {
    {{25.5F, "25.5"}, {24.0F, "24"}, {14.0F, "14"}, {10.0F, "10"}}};

QByteArray savedValues(const QString& name) {
    try {
        const std::optional<framework::SavedDefinition> saved =
            framework::DefinitionStore().load(TAlvMuutosLomake::kFormName, name);
        return saved ? vatchange::definitionNote(vatchange::loadDefinition(*saved).definition)
                     : QByteArray();
    } catch (const data::DataError&) {
        return {};  // told when the batch loads it
    }
}

// Names that are not saved, in quotes; none if the saved definitions cannot be read, which the
// window has told when it was filled.
QStringList unknownNames(const company::BatchList& list) {
    QStringList unknown;
    try {
        const framework::DefinitionStore definitions;
        for (const QString& name : list)
            if (!name.isEmpty() && !definitions.has(TAlvMuutosLomake::kFormName, name))
                unknown.append(QStringLiteral("\"%1\"").arg(name));
    } catch (const data::DataError&) {
        return {};
    }
    return unknown;
}

}  // namespace

TMainForm::TMainForm(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("MainForm"));
    setWindowTitle(QStringLiteral("Alvluokkien ja hintojen muutokset"));
    buildLayout();
    framework::rememberPlace(*this, objectName());
}

TMainForm::~TMainForm() {
    delete m_changeForm;
}

QStringList TMainForm::alusta() {
    m_problems.clear();
    for (const auto part :
         {&TMainForm::readNames, &TMainForm::readBatchList, &TMainForm::readVatClasses}) {
        try {
            (this->*part)();
        } catch (const std::exception& e) {
            m_problems.append(data::errorText(e));
        }
    }
    return m_problems;
}

void TMainForm::readNames() {
    const QStringList names = framework::TRapMaarForm::GetValues(TAlvMuutosLomake::kFormName);
    const company::BatchList shown = batchList();
    m_definitions[0]->clear();
    for (QComboBox* list : m_definitions)
        list->addItems(names);
    showBatchList(shown);  // the first item added becomes the text
}

void TMainForm::readBatchList() {
    const QString fileName = company::batchListToRead();
    try {
        const company::BatchList list = company::readBatchList(fileName);
        m_batch = {list, company::readBatchSettings(fileName),
                   company::batchListText(fileName, list)};
        showBatchList(list);
    } catch (const data::DataError& e) {
        m_batch = {
            {}, {}, QStringLiteral("Eräajon luetteloa ei voitu lukea: ") + e.finnish(), true};
        throw;
    }
    m_listRead = true;
}

void TMainForm::showBatchList(const company::BatchList& list) {
    for (std::size_t i = 0; i < list.size(); ++i)
        m_definitions[i]->setEditText(list[i]);
}

void TMainForm::readVatClasses() {
    data::TtbTable classes;
    company::openCompanyTable(classes, QStringLiteral("ALVKANTA"));
    const data::TField& number = classes.fieldByName(QStringLiteral("luokka"));
    const data::TField& rate = classes.fieldByName(QStringLiteral("Prosentti"));
    for (classes.first(); !classes.eof(); classes.next()) {
        for (std::size_t i = 0; i < kRates.size(); ++i) {
            if (static_cast<float>(rate.asFloat()) != kRates[i].percent)
                continue;
            m_rateLabels[i]->setPalette(QPalette());
            m_rateLabels[i]->setAutoFillBackground(false);
            m_rateLabels[i]->setText(QStringLiteral("Alv %1% - LÖYTYY (%2)")
                                         .arg(QLatin1String(kRates[i].text))
                                         .arg(static_cast<qint16>(number.asInteger())));
        }
    }
}

void TMainForm::showCompany() {
    m_company->setText(QStringLiteral("YRITYS: ") + company::currentCompany().name);
    if (BatchMode)
        return;
    refreshLastRun();
    m_scheduleLine->refresh();
}

company::BatchList TMainForm::batchList() const {
    company::BatchList list;
    for (std::size_t i = 0; i < list.size(); ++i)
        list[i] = m_definitions[i]->currentText();
    return list;
}

bool TMainForm::alreadyRun() const {
    return !platform::hasSwitch(QStringLiteral("/U")) &&
           company::ExecutionMarkExists(company::companyDatabase());
}

void TMainForm::openChangeForm() {
    if (m_changeForm == nullptr) {
        m_changeForm = new TAlvMuutosLomake(company::companyDatabase());
        m_changeForm->Unattended = BatchMode;
        connect(m_changeForm, &TAlvMuutosLomake::closed, this, &TMainForm::changeFormClosed);
        connect(m_changeForm, &TAlvMuutosLomake::runningChanged, this, [this](bool running) {
            setEnabled(!running);
            if (!running && !BatchMode)
                refreshLastRun();
        });
    }
    m_changeForm->show();
    m_changeForm->raise();
    m_changeForm->activateWindow();
}

void TMainForm::changeFormClosed() {
    m_changeForm.clear();  // it deletes itself
    const QStringList problems = alusta();
    if (BatchMode) {
        for (const QString& problem : problems)
            company::WriteAlvMuutosLog(kErrorPrefix + problem);
    } else if (!problems.isEmpty()) {
        framework::Dialogs::error(this, problems.join(QLatin1Char('\n')));
    }
}

void TMainForm::BitBtn1Click() {
    if (BatchMode) {
        runBatchAndLeave();
        return;
    }
    framework::reportErrors(this, [this] {
        if (alreadyRun())
            framework::Dialogs::message(this, alreadyRunAdvice());
        else
            openChangeForm();
    });
}

ExitStatus TMainForm::runWholeBatch() {
    BatchPorts ports;
    ports.database = &company::companyDatabase();
    ports.runAnyway = platform::hasSwitch(QStringLiteral("/U"));
    ports.endRequested = platform::endRequested;
    ports.alreadyRun = [this] { return alreadyRun(); };
    ports.isSaved = [](const QString& name) {
        return framework::DefinitionStore().has(TAlvMuutosLomake::kFormName, name);
    };
    ports.values = savedValues;
    ports.problems = [this] { return m_problems; };
    ports.openForm = [this] {
        openChangeForm();
        QCoreApplication::processEvents();
    };
    ports.load = [this](const QString& name) {
        if (m_changeForm == nullptr)  // closed by the user between two definitions
            openChangeForm();
        m_changeForm->showStatus(name);
        return framework::TRapMaarForm::LataaArvot(*m_changeForm, name);
    };
    ports.run = [this](const vatchange::RunOptions& options) {
        m_inRun = true;
        auto result = m_changeForm->EsikatseleClick(options);
        m_inRun = false;
        if (result)
            return *std::move(result);
        vatchange::RunResult notRun;
        notRun.refused = true;
        return notRun;
    };
    ports.backup = [](const QString& folder) {
        return batchBackup(folder, platform::endRequested);
    };
    ports.report = batchReport;
    ports.generalLog = company::writeGeneralLog;
    ports.standardError = [](const QString& line) { QTextStream(stderr) << line << '\n'; };
    ports.changeLog = company::WriteAlvMuutosLog;
    if (Rehearsal != nullptr)
        Rehearsal->adapt(ports);
    m_batch.names = batchList();
    const qint64 lostBefore = company::lostChangeLogLines().count;
    const ExitStatus status = runBatch(m_batch, ports);
    const bool lostLines = company::lostChangeLogLines().count > lostBefore;
    return status == ExitStatus::Done && lostLines ? ExitStatus::Failed : status;
}

void TMainForm::runBatchAndLeave() {
    m_exitStatus = ExitStatus::Failed;
    try {
        m_exitStatus = runWholeBatch();
    } catch (const std::exception& e) {
        const QString text =
            kErrorPrefix + QStringLiteral("eräajo päättyi virheeseen: ") + data::errorText(e);
        company::WriteAlvMuutosLog(text);
        QTextStream(stderr) << text << '\n';
        if (m_inRun && framework::Dialogs::isInteractive()) {
            framework::Dialogs::error(this, text);
            return;  // leave the windows to the user at the screen
        }
    }
    if (Rehearsal != nullptr && !Rehearsal->finish() && m_exitStatus == ExitStatus::Done)
        m_exitStatus = ExitStatus::Failed;
    if (m_exitStatus == ExitStatus::Failed && !m_problems.isEmpty())
        QTextStream(stderr) << m_problems.join(QLatin1Char('\n')) << '\n';
    else if (m_exitStatus == ExitStatus::AlreadyRun)
        QTextStream(stderr) << kAlreadyRunText << '\n';
    if (m_changeForm != nullptr)
        m_changeForm->close();
    close();
}

void TMainForm::BtnLogClick() {
    if (m_logWindow == nullptr)
        m_logWindow = std::make_unique<LogWindow>();
    m_logWindow->reload();
    m_logWindow->show();
    m_logWindow->raise();
    m_logWindow->activateWindow();
}

void TMainForm::TalletaClick() {
    if (!m_listRead) {
        framework::Dialogs::error(
            this, QStringLiteral("Talletettua luetteloa ei voitu lukea, joten sitä ei korvata.\n"
                                 "Korjaa tiedosto ja käynnistä ohjelma uudelleen: ") +
                      company::batchListToRead());
        return;
    }
    framework::reportErrors(this, [this] {
        const company::BatchList list = batchList();
        const QStringList unknown = unknownNames(list);
        if (!unknown.isEmpty() &&
            !framework::Dialogs::ask(
                this,
                QStringLiteral("Määrittelyä ei ole: %1. Eräajo, jonka luettelossa on tällainen "
                               "nimi, ei aja mitään.\rTalletetaanko luettelo silti?")
                    .arg(unknown.join(QStringLiteral(", ")))))
            return;
        const QString fileName = company::AlvMuutosIniName();
        company::writeBatchList(fileName, list);
        showFeedback(QStringLiteral("Eräajon luettelo talletettiin: ") +
                     QDir::toNativeSeparators(fileName));
    });
}

void TMainForm::Button1Click() {
    framework::reportErrors(this, [this] {
        if (!framework::Dialogs::ask(this,
                                     QStringLiteral("Haluatko varmasti poistaa ajomerkinnän? \r"
                                                    "alv muutos voidaan ajaa silloin uudestaan")))
            return;
        const int deleted = company::DeleteExecutionMark(company::companyDatabase());
        framework::Dialogs::message(this, deleted < 1 ? QStringLiteral("Ajomerkintää ei ollut")
                                                      : QStringLiteral("Ajomerkintä poistettu"));
    });
}

void TMainForm::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!BatchMode || m_batchStarted)
        return;
    m_batchStarted = true;
    // From the event loop, so that the batch can end the loop.
    QTimer::singleShot(0, this, &TMainForm::BitBtn1Click);
}

void TMainForm::closeEvent(QCloseEvent* event) {
    if (m_changeForm != nullptr && !m_changeForm->close()) {
        event->ignore();
        return;
    }
    m_logWindow.reset();
    QWidget::closeEvent(event);
    QCoreApplication::exit(static_cast<int>(m_exitStatus));
}

}  // namespace shell
