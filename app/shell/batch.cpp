#include "app/shell/batch.h"

#include <QStringList>

namespace shell {

const QString kAlreadyRunText = QStringLiteral("Taksavaihe on kertaalleen ajettu");

ExitStatus runBatch(const company::BatchList& list, const BatchPorts& ports) {
    if (ports.alreadyRun()) {
        ports.generalLog(kAlreadyRunText);
        return ExitStatus::AlreadyRun;
    }

    QStringList definitions;
    QStringList unknown;
    for (const QString& name : list) {
        if (name.isEmpty())
            continue;
        definitions.append(name);
        if (!ports.isSaved(name))
            unknown.append(name);
    }
    if (!unknown.isEmpty()) {
        for (const QString& name : unknown)
            ports.changeLog(QStringLiteral("Määrittelyä ei löydy, eräajoa ei tehdä: ") + name);
        return ExitStatus::Unavailable;
    }

    ports.openForm();
    bool clean = true;
    for (const QString& name : definitions) {
        if (!ports.load(name)) {
            ports.changeLog(QStringLiteral("Määrittelyä ei löydy: ") + name);
            clean = false;
            continue;
        }
        ports.changeLog(QStringLiteral("Aloitetaan muutos määrittelylle: ") + name);
        const vatchange::RunResult result = ports.run();
        clean = clean && result.clean();
        if (result.cancelled)
            break;
    }
    return clean ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace shell
