#include "data/clock.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

const QDateTime& changeMoment() {
    static const QDateTime kMoment(QDate(2024, 8, 31), QTime(15, 0));
    return kMoment;
}

/// The change must not be run by mistake before the rates have changed.
bool dateAllowsRun(RunPorts& ports, QString& refusal) {
    if (ports.skipEarlyDateCheck() || data::Clock::now() >= changeMoment())
        return true;
    const QString warning =
        QStringLiteral("Olet vaihtamassa veroluokkaa, vaikka kuukausi ei ole vielä vaihtunut!");
    if (ports.unattended()) {
        ports.log(warning);
    } else if (ports.ask(warning + QStringLiteral("\r\rJatketaanko?"))) {
        return true;
    }
    refusal = warning;
    return false;
}

/// What is wrong with the definition's VAT classes; empty when nothing is.
QString classProblem(const RunContext& run) {
    const int source = run.definition.sourceClass;
    const int target = run.definition.targetClass;
    if (target <= 0)
        return QStringLiteral("Kohteen ALV -luokka on oltava > 0!");
    if (!run.classes.exists(target))
        return QStringLiteral("Kohteen ALV -luokkaa ei ole olemassa!");
    if (source == target)
        return QStringLiteral("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!");
    if (source != 0 && run.classes.ratePercent(source) == run.classes.ratePercent(target)) {
        return QStringLiteral(
            "Lähteen ALV -luokan prosentti on sama kuin kohteen ALV -luokan prosentti!");
    }
    return {};
}

}  // namespace

bool checkDefinition(RunContext& run) {
    if (!dateAllowsRun(run.ports, run.result.refusal))
        return false;
    QString problem;
    try {
        run.classes = VatClasses::read(run.database);
        problem = classProblem(run);
    } catch (const std::exception& error) {
        problem = QStringLiteral("Virhe alv-luokkien lukemisessa: ") + errorText(error);
    }
    if (!problem.isEmpty()) {
        run.result.refusal = problem;
        run.ports.NaytaViesti(problem);
        return false;
    }
    run.targetFactor = vatFactor(run.classes.ratePercent(run.definition.targetClass));
    return true;
}

}  // namespace vatchange
