#include "shell/start_up.h"

#include <QDialog>
#include <QTextStream>
#include <algorithm>
#include <array>
#include <memory>

#include "company/aliases.h"
#include "company/company.h"
#include "company/connection_module.h"
#include "company/logs.h"
#include "company/registration.h"
#include "data/error.h"
#include "framework/ui/company_choice.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/finnish_texts.h"
#include "framework/ui/help.h"
#include "framework/ui/splash.h"
#include "platform/command_line.h"
#include "platform/dictionary_module.h"
#include "platform/end_request.h"
#include "shell/build_stamp.h"
#include "shell/display_guard.h"
#include "shell/main_form.h"
#include "shell/program_title.h"
#include "shell/rehearsed_batch.h"
#include "shell/schedule/schedule_note.h"
#include "shell/schedule/scheduled_start.h"

namespace shell {

namespace {

constexpr int kSplashProgressMaximum = 100;
constexpr int kSplashProgressAtStart = 20;

const QString kHelp = QStringLiteral(
    "Taksavaihe - alv-luokkien ja hintojen muutokset\n"
    "\n"
    "Käyttö: taksavaihe [YRITYS] [/E] [/KOEAJO] [/U] [/EP]\n"
    "\n"
    "  YRITYS            yrityksen nimi; ilman sitä yritys valitaan luettelosta\n"
    "  /E                eräajo: ajaa talletetut määrittelyt ilman käyttäjää ja lopettaa\n"
    "  /KOEAJO           valitsimen /E kanssa: ajaa määrittelyt yrityksen kopiolla ja jättää\n"
    "                    tulokset yrityksen kansioon KOEAJO; yrityksen tiedot eivät muutu\n"
    "  /U                ajaa muutoksen, vaikka se on jo kertaalleen ajettu\n"
    "  /EP               jättää päivämäärän tarkastuksen tekemättä\n"
    "  /unimonitor       jäljittää kaikki SQL-lauseet\n"
    "  /uniquerydebug    jäljittää kyselyt\n"
    "  /UNIDACDEBUG      jäljittää kyselyt parametreineen (ei ensimmäisenä parametrina)\n"
    "  --help, --version\n"
    "\n"
    "Eräajon paluuarvo: 0 kaikki onnistui, 1 määrittely hylättiin tai jokin epäonnistui,\n"
    "2 yritystä, sen tietokantaa tai eräajon määrittelyä ei löydy, luetteloa ei voi lukea\n"
    "tai valitsin on tuntematon,\n"
    "3 muutos on jo ajettu. Sama komento jatkaa keskeytynyttä eräajoa.\n");

bool anyOf(const QStringList& parameters, std::initializer_list<const char*> wanted) {
    for (const char* text : wanted) {
        if (parameters.contains(QLatin1String(text), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

int fail(ExitStatus status, const QString& text) {
    QTextStream(stderr) << text << '\n';
    return static_cast<int>(status);
}

// Unknown switches, as typed. A batch must not run with one: it would ignore what was requested.
QStringList unknownSwitches() {
    static constexpr std::array kKnown = {"/E",          "/KOEAJO",        "/U",          "/EP",
                                          "/unimonitor", "/uniquerydebug", "/UNIDACDEBUG"};
    const bool unattended = platform::hasSwitch(QStringLiteral("/E"));
    QStringList unknown;
    for (const QString& parameter : platform::parameters()) {
        const bool isSwitch =
            parameter.startsWith(QLatin1Char('/')) || parameter.startsWith(QLatin1Char('-'));
        if (unattended && scheduledMoment(parameter).isValid())
            continue;
        if (isSwitch && std::none_of(kKnown.begin(), kKnown.end(), [&](const char* known) {
                return platform::sameSwitch(parameter, QLatin1String(known));
            }))
            unknown += parameter;
    }
    return unknown;
}

// The parameter meant as company name, for the error text.
QString wantedCompany() {
    for (const QString& parameter : platform::parameters()) {
        if (!parameter.startsWith(QLatin1Char('/')) && !parameter.startsWith(QLatin1Char('-')))
            return parameter;
    }
    return {};
}

// Shows why the program cannot start, or writes it to standard error. @return the exit status
int refuse(ExitStatus status, const QString& text) {
    if (platform::hasSwitch(QStringLiteral("/E")))
        return fail(status, text);
    framework::Dialogs::error(nullptr, text);
    return static_cast<int>(status);
}

// Filters warnings of the offscreen platform: an unattended run's standard error is for errors.
QtMessageHandler otherMessages = nullptr;
void filterPlatformWarnings(QtMsgType type, const QMessageLogContext& context,
                            const QString& text) {
    if (!text.startsWith(QLatin1String("This plugin does not support")))
        otherMessages(type, context, text);
}

enum class Choice { Made, Cancelled, Impossible };

Choice chooseCompany() {
    framework::TYritysValinta choice;
    const bool interactive = !platform::hasSwitch(QStringLiteral("/E"));
    if (choice.OnParametrina()) {
        if (interactive)
            company::rememberUse(company::currentCompany().name);
        return Choice::Made;
    }
    if (!interactive) {
        company::aliasNames();  // throws if the list is not to be read: the company may be there
        return Choice::Impossible;
    }
    if (choice.exec() != QDialog::Accepted)
        return Choice::Cancelled;
    company::rememberUse(company::currentCompany().name);
    return Choice::Made;
}

}  // namespace

QString commandLineAnswer(const QStringList& parameters) {
    if (anyOf(parameters, {"--help", "-h", "/?"}))
        return kHelp;
    if (anyOf(parameters, {"--version"}))
        return QStringLiteral("Taksavaihe ") + buildStamp() + QLatin1Char('\n');
    return {};
}

bool preparePlatform(const QStringList& parameters, QString& problem) {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    const bool unattended = platform::hasSwitch(QStringLiteral("/E"));
    if (anyOf(parameters, {"-platform", "--platform"}) || (!chosen.isEmpty() && !unattended))
        return true;
    const bool x11 = !qEnvironmentVariableIsEmpty("DISPLAY");
    const bool wayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (unattended) {
        // Tried in this order: the display may be gone.
        QByteArrayList platforms;
        if (!chosen.isEmpty()) {
            platforms.append(chosen);
        } else {
            if (wayland)
                platforms.append("wayland");
            if (x11)
                platforms.append("xcb");
        }
        platforms.append("offscreen");
        qputenv("QT_QPA_PLATFORM", platforms.join(';'));
        return true;
    }
    if (x11 || wayland)
        return true;
    problem = QStringLiteral("Näyttöä ei ole (DISPLAY tai WAYLAND_DISPLAY). ") + kWithoutDisplay;
    return false;
#else
    Q_UNUSED(parameters);
    Q_UNUSED(problem);
    return true;
#endif
}

namespace {

int start(QApplication& application, ScheduledStart& scheduled) {
    const bool batch = platform::hasSwitch(QStringLiteral("/E"));
    if (batch) {
        platform::watchEndRequests();
        QObject::connect(&application, &QGuiApplication::commitDataRequest, &application,
                         platform::requestEnd, Qt::DirectConnection);
    }
    QApplication::setApplicationVersion(buildStamp());
    framework::useFinnishTexts();
    framework::installHelpKey();
    if (!framework::Dialogs::isInteractive())
        otherMessages = qInstallMessageHandler(filterPlatformWarnings);
    company::setLogErrorReport([](const QString& text) { QTextStream(stderr) << text << '\n'; });
    company::TZavDbConnectionModule::setNotice(framework::showNotice);
    if (const QStringList unknown = unknownSwitches(); !unknown.isEmpty()) {
        const int status = fail(ExitStatus::Unavailable, QStringLiteral("Tuntematon valitsin: ") +
                                                             unknown.join(QStringLiteral(", ")));
        if (batch)
            return status;
    }
    const bool rehearsed = platform::hasSwitch(QStringLiteral("/KOEAJO"));
    if (rehearsed && !batch)
        return fail(ExitStatus::Unavailable,
                    QStringLiteral("Valitsin /KOEAJO tarvitsee valitsimen /E. Lomakkeella koeajo "
                                   "on painike \"Koeajo...\"."));
    if (!batch && !framework::Dialogs::isInteractive())
        return fail(ExitStatus::Unavailable,
                    QStringLiteral("Ohjelman ikkunoita ei näkisi kukaan (näyttöalusta %1). ")
                            .arg(QGuiApplication::platformName()) +
                        kWithoutDisplay);

    auto splash = std::make_unique<framework::TZAVLogoForm>();
    splash->AsetaTiedot(kProgramTitle, kProgramVersion);
    splash->progressBar()->setMaximum(kSplashProgressMaximum);
    splash->showNow();
    splash->progressBar()->setValue(kSplashProgressAtStart);

    try {
        platform::loadDictionaryModule();
        switch (chooseCompany()) {
            case Choice::Made:
                break;
            case Choice::Cancelled:
                return static_cast<int>(ExitStatus::Done);
            case Choice::Impossible:
                return fail(ExitStatus::Unavailable,
                            wantedCompany().isEmpty()
                                ? QStringLiteral("Yrityksen nimi puuttuu")
                                : QStringLiteral("Yritystä ei löydy: ") + wantedCompany());
        }
    } catch (const std::exception& e) {
        splash.reset();
        return refuse(ExitStatus::Unavailable, data::errorText(e));
    }
    splash->repaint();
    if (const QString refusal = scheduled.refusal(); !refusal.isEmpty()) {
        // a rehearsal leaves nothing in the company's logs
        if (!rehearsed)
            company::writeGeneralLog(refusal);
        return fail(ExitStatus::Failed, refusal);
    }

    vatchange::removeAbandonedCopies();
    std::unique_ptr<RehearsedBatch> rehearsal;
    if (rehearsed) {
        ExitStatus status = ExitStatus::Failed;
        rehearsal = RehearsedBatch::begin(status);
        if (!rehearsal)
            return static_cast<int>(status);
    }

    try {
        company::companyDatabase();
    } catch (const std::exception& e) {
        splash.reset();
        return refuse(ExitStatus::Unavailable, data::errorText(e));
    }

    TMainForm mainForm;
    mainForm.BatchMode = batch;
    mainForm.Rehearsal = rehearsal.get();
    const QStringList problems = mainForm.alusta();
    if (!problems.isEmpty() && !batch) {  // a batch reports them after checking the run mark
        splash.reset();
        framework::Dialogs::error(&mainForm, problems.join(QLatin1Char('\n')));
    }
    splash.reset();
    QApplication::setQuitOnLastWindowClosed(false);  // the main window ends the program
    mainForm.showCompany();
    mainForm.show();
    return application.exec();
}

}  // namespace

int runProgram(QApplication& application) {
    ScheduledStart scheduled(wantedCompany());
    const int status = start(application, scheduled);
    scheduled.ended(status);
    return status;
}

}  // namespace shell
