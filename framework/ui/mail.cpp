#include "framework/ui/mail.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrlQuery>

namespace framework {

namespace {

Desktop programDesktop;
Desktop* currentDesktop = nullptr;

constexpr int kStartMs = 2000;
constexpr int kAnswerMs = 4000;

// "mailto:" needs CR LF line ends and percent encoding.
QUrl mailAddress(const QString& subject, QString text) {
    text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return QUrl(QStringLiteral("mailto:?subject=") +
                QString::fromLatin1(QUrl::toPercentEncoding(subject)) + QStringLiteral("&body=") +
                QString::fromLatin1(QUrl::toPercentEncoding(text)));
}

}  // namespace

Desktop& Desktop::instance() {
    return currentDesktop != nullptr ? *currentDesktop : programDesktop;
}

Desktop* Desktop::setInstance(Desktop* desktop) {
    Desktop* previous = currentDesktop;
    currentDesktop = desktop;
    return previous;
}

Desktop::Outcome Desktop::run(const QString& program, const QStringList& arguments) {
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty())
        return Outcome::NotThere;
    // No owner: destroying a QProcess kills its program, and the mail program outlives this one.
    // Deleted if the program ends first.
    auto* process = new QProcess;
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(path, arguments);
    if (!process->waitForStarted(kStartMs)) {
        process->deleteLater();
        return Outcome::NotThere;
    }
    QElapsedTimer waited;
    waited.start();
    while (process->state() != QProcess::NotRunning && waited.elapsed() < kAnswerMs)
        QCoreApplication::processEvents(
            QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents, 100);
    if (process->state() != QProcess::NotRunning) {
        QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
        return Outcome::Done;
    }
    const bool well = process->exitStatus() == QProcess::NormalExit && process->exitCode() == 0;
    process->deleteLater();
    return well ? Outcome::Done : Outcome::Failed;
}

bool Desktop::open(const QUrl& address) {
    return QDesktopServices::openUrl(address);
}

#ifndef Q_OS_WIN
Desktop::Outcome Desktop::sendThroughSystem(const QString&, const QString&, const QString&) {
    return Outcome::NotThere;
}
#endif

MailResult composeMail(const QString& subject, const QString& text, const QString& fileName) {
    Desktop& desktop = Desktop::instance();
    if (desktop.sendThroughSystem(subject, text, fileName) == Desktop::Outcome::Done)
        return MailResult::Attached;
    if (desktop.run(QStringLiteral("xdg-email"),
                    {QStringLiteral("--utf8"), QStringLiteral("--subject"), subject,
                     QStringLiteral("--body"), text, QStringLiteral("--attach"), fileName}) ==
        Desktop::Outcome::Done)
        return MailResult::Attached;

    const QString byHand = text + QStringLiteral("\n\nLiitä viestiin tiedosto: ") +
                           QDir::toNativeSeparators(fileName) + QLatin1Char('\n');
    if (!desktop.open(mailAddress(subject, byHand)))
        return MailResult::Impossible;
    desktop.open(QUrl::fromLocalFile(QFileInfo(fileName).absolutePath()));
    return MailResult::ByHand;
}

}  // namespace framework
