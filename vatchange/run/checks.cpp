#include <algorithm>

#include "data/clock.h"
#include "vatchange/rules/change_day.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

/// Prevents running the change by mistake before the rates have changed.
bool dateAllowsRun(const ChangeDefinition& definition, RunPorts& ports, QString& refusal) {
    if (ports.skipEarlyDateCheck() || data::Clock::now() >= earliestRun(definition))
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

}  // namespace

bool definitionAllowsRun(RunContext& run, const LoadedDefinition& loaded, const CompanyFacts& facts,
                         const RunOptions& options) {
    QStringList problems;
    bool final = run.ports.unattended();
    for (const DefinitionProblem& problem : definitionProblems(loaded, facts)) {
        problems += problem.text();
        final = final || problem.final;
    }
    if (problems.isEmpty())
        return true;
    const QString refusal =
        QStringLiteral("Määrittelyä ei ajeta: ") + problems.join(QStringLiteral("; "));
    if (final) {
        run.result.refusal = refusal;
        run.ports.NaytaViesti(refusal);
        return false;
    }
    const bool agreed = std::all_of(
        problems.begin(), problems.end(),
        [&options](const QString& problem) { return options.agreedProblems.contains(problem); });
    if (!agreed &&
        !run.ports.ask(QStringLiteral("Määrittelyssä on arvoja, joilla sitä ei pitäisi ajaa:\r") +
                       problems.join(u'\r') + QStringLiteral("\r\rAjetaanko silti?"))) {
        run.result.refusal = refusal;
        return false;
    }
    for (const QString& problem : problems)
        run.ports.log(QStringLiteral("Huomaa: ajetaan silti, ") + problem);
    return true;
}

QString classProblem(const ChangeDefinition& definition, const VatClasses& classes) {
    const int source = definition.sourceClass;
    const int target = definition.targetClass;
    if (target <= 0)
        return QStringLiteral("Kohteen ALV -luokka on oltava > 0!");
    if (!classes.exists(target))
        return QStringLiteral("Kohteen ALV -luokkaa ei ole olemassa!");
    if (source == target)
        return QStringLiteral("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!");
    if (source != 0 && classes.ratePercent(source) == classes.ratePercent(target)) {
        return QStringLiteral(
            "Lähteen ALV -luokan prosentti on sama kuin kohteen ALV -luokan prosentti!");
    }
    return {};
}

bool checkDefinition(RunContext& run) {
    if (!dateAllowsRun(run.definition, run.ports, run.result.refusal))
        return false;
    QString problem;
    try {
        run.classes = VatClasses::read(run.database);
        problem = classProblem(run.definition, run.classes);
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
