#include "shell/batch.h"

#include <algorithm>

#include "data/error.h"
#include "shell/batch_progress.h"

namespace shell {

const QString kAlreadyRunText = QStringLiteral("Taksavaihe on kertaalleen ajettu");
const QString kDefinitionBegins = QStringLiteral("Aloitetaan muutos määrittelylle: ");
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

bool isAlreadyRun(const BatchPorts& ports) {
    if (!ports.alreadyRun())
        return false;
    ports.generalLog(kAlreadyRunText);
    return true;
}

class RunLock {
  public:
    explicit RunLock(data::Database& database)
        : m_database(database), m_taken(database.beginRun()) {}
    ~RunLock() {
        if (m_taken)
            m_database.endRun();
    }
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;
    bool taken() const { return m_taken; }

  private:
    data::Database& m_database;
    const bool m_taken;
};

// Makes the backup that the list asks for. @return whether the batch may begin
bool backedUp(const company::BatchSettings& settings, const BatchPorts& ports) {
    if (settings.backupFolder.isEmpty())
        return true;
    const QString problem = ports.backup(settings.backupFolder);
    if (!problem.isEmpty())
        ports.changeLog(kErrorPrefix +
                        QStringLiteral("eräajoa ei tehdä, koska varmuuskopio ei onnistunut: ") +
                        problem);
    return problem.isEmpty();
}

// Writes the report that the list asks for. @return whether it did not fail
bool reported(const company::BatchSettings& settings, const BatchPorts& ports,
              const BatchProgress& batch, const QStringList& refusals) {
    if (!settings.report || ports.endRequested())
        return true;
    const QString problem = ports.report(batch.runs(), refusals);
    if (!problem.isEmpty())
        ports.changeLog(kErrorPrefix + QStringLiteral("eräajon raporttia ei voitu kirjoittaa: ") +
                        problem);
    return problem.isEmpty();
}

// Runs or resumes what is left of the batch. `refusals` gets why definitions were not run.
// @return whether all of it succeeded
bool runDefinitions(BatchProgress& batch, const BatchPorts& ports, QStringList& refusals) {
    bool clean = true;
    while (const BatchProgress::Definition* next = batch.next()) {
        if (ports.endRequested()) {
            ports.changeLog(QStringLiteral("Ajo keskeytettiin ennen määrittelyä ") + next->name);
            return false;
        }
        if (const QString problem = loadProblem(next->name, ports); !problem.isEmpty()) {
            ports.changeLog(problem);
            refusals += problem;
            clean = false;
            if (next->resume != 0)
                return false;
            batch.refused();
            continue;
        }
        if (next->resume == 0)
            ports.changeLog(kDefinitionBegins + next->name);
        const vatchange::RunResult result = ports.run({next->resume, batch.firstRun()});
        clean = clean && result.clean();
        if (result.refused)
            refusals += QStringLiteral("%1: %2").arg(next->name, result.refusal);
        const bool stays = next->resume != 0 && result.refused;
        batch.ended(result);
        // what follows may build on what the refused run has left undone
        if (result.cancelled || stays)
            break;
    }
    return clean;
}

}  // namespace

ExitStatus runBatch(const BatchSource& list, const BatchPorts& ports) {
    const bool unfinished = BatchProgress::unfinished(ports);
    if (!unfinished && isAlreadyRun(ports))
        return ExitStatus::AlreadyRun;

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

    if (definitions.isEmpty() && !unfinished) {
        ports.openForm();
        return ExitStatus::Done;
    }
    const RunLock lock(*ports.database);
    if (!lock.taken() || ports.otherRunGoesOn()) {
        ports.changeLog(vatchange::kOtherRunText);
        return ExitStatus::Failed;
    }
    BatchProgress batch(ports, definitions);
    if (const QString refusal = batch.refusal(); !refusal.isEmpty()) {
        ports.changeLog(refusal);
        return ExitStatus::Failed;
    }
    if (!batch.continues()) {
        if (unfinished && isAlreadyRun(ports))  // it was given up, or another process finished it
            return ExitStatus::AlreadyRun;
        if (!backedUp(list.settings, ports))
            return ExitStatus::Failed;
        batch.begin();
    }
    ports.openForm();
    QStringList refusals;
    bool clean = runDefinitions(batch, ports, refusals);
    clean = reported(list.settings, ports, batch, refusals) && clean;
    return clean && batch.stored() ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace shell
