#include "shell/batch.h"

#include "data/error.h"

namespace shell {

const QString kAlreadyRunText = QStringLiteral("Taksavaihe on kertaalleen ajettu");
const QString kErrorPrefix = QStringLiteral("Virhe: ");

namespace {

// Loads a definition. @return the reason if that failed, else empty
QString loadProblem(const QString& name, const BatchPorts& ports) {
    try {
        return ports.load(name) ? QString() : QStringLiteral("Määrittelyä ei löydy: ") + name;
    } catch (const data::DataError& e) {
        return QStringLiteral("Määrittelyä ei ajeta: \"%1\": ").arg(name) + e.finnish();
    }
}

}  // namespace

ExitStatus runBatch(const BatchSource& list, const BatchPorts& ports) {
    if (ports.alreadyRun()) {
        ports.generalLog(kAlreadyRunText);
        return ExitStatus::AlreadyRun;
    }

    ports.generalLog(list.text);
    if (list.unreadable) {
        ports.standardError(list.text);
        return ExitStatus::Unavailable;
    }

    QStringList definitions;
    QStringList unknown;
    for (const QString& name : list.names) {
        if (name.isEmpty())
            continue;
        definitions.append(name);
        if (!ports.isSaved(name))
            unknown.append(name);
    }
    if (definitions.isEmpty())
        ports.standardError(list.text);
    if (!unknown.isEmpty()) {
        for (const QString& name : unknown) {
            const QString line = QStringLiteral("Määrittelyä ei löydy, eräajoa ei tehdä: ") + name;
            ports.changeLog(line);
            ports.standardError(line);
        }
        return ExitStatus::Unavailable;
    }

    if (const QStringList problems = ports.problems(); !problems.isEmpty()) {
        for (const QString& problem : problems)
            ports.changeLog(kErrorPrefix + problem);
        return ExitStatus::Failed;
    }

    ports.openForm();
    bool clean = true;
    for (const QString& name : definitions) {
        if (const QString problem = loadProblem(name, ports); !problem.isEmpty()) {
            ports.changeLog(problem);
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
