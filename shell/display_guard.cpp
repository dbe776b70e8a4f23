#include "shell/display_guard.h"

#include <QStringList>
#include <QTextStream>
#include <cstdlib>

#include "shell/batch.h"

namespace shell {

const QString kWithoutDisplay =
    QStringLiteral("Ilman näyttöä ohjelma toimii eräajona: taksavaihe YRITYS /E");

#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)

namespace {

QtMessageHandler handlerBefore = nullptr;

QStringList& heldBack() {
    static QStringList texts;
    return texts;
}

QString displaysAskedFor() {
    QStringList set;
    for (const char* name : {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!qEnvironmentVariableIsEmpty(name))
            set += QLatin1String(name) + u'=' + qEnvironmentVariable(name);
    }
    return set.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(set.join(QStringLiteral(", ")));
}

void handleMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type != QtFatalMsg) {
        heldBack() += text;
        return;
    }
    QTextStream(stderr) << "Näyttöön ei saada yhteyttä" << displaysAskedFor()
                        << ". Tarkista nämä asetukset ja oikeus näyttöön. " << kWithoutDisplay
                        << '\n';
    std::_Exit(static_cast<int>(ExitStatus::Unavailable));  // returning would abort
}

}  // namespace

DisplayGuard::DisplayGuard() {
    handlerBefore = qInstallMessageHandler(handleMessage);
}

DisplayGuard::~DisplayGuard() {
    qInstallMessageHandler(handlerBefore);
    for (const QString& text : heldBack())
        QTextStream(stderr) << text << '\n';
    heldBack().clear();
}

#else

DisplayGuard::DisplayGuard() = default;
DisplayGuard::~DisplayGuard() = default;

#endif

}  // namespace shell
