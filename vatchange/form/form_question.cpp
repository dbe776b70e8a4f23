#include <algorithm>

#include "company/company.h"
#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/run_question.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

// Resuming has been asked about. A run that will be refused is not asked about: it says why itself.
bool TAlvMuutosLomake::agreesToRun(const LoadedDefinition& loaded, RunOptions& options) {
    if (options.resume != 0)
        return true;
    const CompanyFacts facts = readCompanyFacts(m_database, loaded.definition);
    const std::vector<DefinitionProblem> problems = definitionProblems(loaded, facts);
    const bool refused = std::any_of(problems.begin(), problems.end(),
                                     [](const DefinitionProblem& p) { return p.final; });
    if (refused || !facts.vatClasses)
        return true;
    bool agreed = false;
    framework::reportErrors(this, [&] {
        if (!classProblem(loaded.definition, VatClasses::read(m_database)).isEmpty()) {
            agreed = true;
            return;
        }
        RunQuestionFacts question;
        for (const DefinitionProblem& problem : problems)
            question.problems += problem.text();
        question.company = company::currentCompany().name;
        question.definition = loadedDefinition().name;
        if (question.definition.isEmpty())
            question.definition = QStringLiteral("tallettamaton määrittely");
        else if (hasUnsavedChanges())
            question.definition += QStringLiteral(" (muutettu, ei talletettu)");
        question.classes = classText(loaded.definition.sourceClass) + QStringLiteral(" → ") +
                           classText(loaded.definition.targetClass);
        question.findings = definitionNotes(loaded, facts);
        RunQuestion window(this, m_database, loaded.definition, question);
        agreed = framework::Dialogs::exec(window);
        if (agreed)
            options.agreedProblems = question.problems;
    });
    return agreed;
}

}  // namespace vatchange
