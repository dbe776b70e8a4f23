#include <QCoreApplication>
#include <cstdio>
#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

#include "platform/console.h"
#include "platform/file_rights.h"
#include "tools/zavdb/command.h"

namespace {

/// A standard stream that was closed would be the next file that is opened, and output would go
/// there. What takes its place can only be read, so that output is an error.
void fillClosedStreams() {
#ifndef Q_OS_WIN
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        ::close(descriptor);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    fillClosedStreams();
    platform::denyWriteToOthers();
    const platform::Console console;
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
    const int status = tools::runZavdb(application.arguments().mid(1));
    if (status == 0 && (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)) {
        tools::printError(QStringLiteral("Standard output cannot be written."));
        return 1;
    }
    return status;
}
