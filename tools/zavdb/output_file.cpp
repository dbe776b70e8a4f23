#include "tools/zavdb/output_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "tools/zavdb/command.h"

namespace tools {

namespace {

CommandError refused(const QFileDevice& file) {
    return CommandError(
        QStringLiteral("%1 cannot be written: %2").arg(file.fileName(), file.errorString()));
}

}  // namespace

qint64 writeFile(const QString& fileName, const std::function<qint64(QIODevice&)>& write) {
    const QFileInfo present(fileName);
    if (present.exists() && !present.isFile()) {
        QFile output(fileName);
        if (!output.open(QIODevice::WriteOnly))
            throw refused(output);
        const qint64 written = write(output);
        output.close();  // flushes
        if (output.error() != QFileDevice::NoError)
            throw refused(output);
        return written;
    }
    QSaveFile output(fileName);
    if (!output.open(QIODevice::WriteOnly))
        throw refused(output);
    const qint64 written = write(output);
    if (!output.commit())
        throw refused(output);
    return written;
}

}  // namespace tools
