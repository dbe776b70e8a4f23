#include <QCoreApplication>
#include <cstdio>
#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#endif

#include "app/company/console.h"
#include "tools/zavdb/command.h"

int main(int argc, char** argv) {
    const company::Console console;
#ifdef Q_OS_WIN
    // exported files are the same bytes on every platform
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    // Standard error is for the command's own errors: the library's notes on a machine without a
    // UTF-8 locale are none of them.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtCriticalMsg || type == QtFatalMsg)
            std::fprintf(stderr, "zavdb: %s\n", qUtf8Printable(text));
    });
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zavdb"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAKSAVAIHE_VERSION));
    return tools::runZavdb(application.arguments().mid(1));
}
