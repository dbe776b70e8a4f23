#include <QCoreApplication>
#include <QUtf8StringView>
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

/// The next file opened would reuse a closed standard stream's descriptor and receive its output. A
/// read-only descriptor takes its place, so that output fails.
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

/// Texts of the command line are UTF-8. What is not would be taken for another name: bytes that are
/// no character all become the same one. @return the place of the first such argument, 0: none.
int malformedArgument([[maybe_unused]] int argc, [[maybe_unused]] char** argv) {
#ifndef Q_OS_WIN
    for (int i = 1; i < argc; ++i)
        if (!QUtf8StringView(argv[i]).isValidUtf8())
            return i;
#endif
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    fillClosedStreams();
    platform::denyWriteToOthers();
    platform::reportFileSizeLimit();
    const platform::Console console;
    if (const int place = malformedArgument(argc, argv); place > 0) {
        tools::printError(
            QStringLiteral("Argument %1 is not valid UTF-8: \"%2\". Rename the file or folder.")
                .arg(place)
                .arg(QString::fromUtf8(QByteArray(argv[place]).toPercentEncoding("/ .,:_-"))));
        return tools::kWrongUsage;
    }
#ifdef Q_OS_WIN
    // exported files are byte-identical on all platforms
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    // Standard error is for the command's errors: suppresses the library's notes about a locale
    // without UTF-8.
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
