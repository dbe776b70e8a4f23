#include <QStorageInfo>
#include <algorithm>

#include "company/company.h"
#include "framework/core/moment_text.h"
#include "framework/ui/backup_dialog.h"
#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/run_question.h"
#include "vatchange/report/run_text.h"
#include "vatchange/run/company_findings.h"
#include "vatchange/run/run_context.h"
#include "vatchange/views/changes_window.h"

namespace vatchange {

namespace {

QStringList textsOf(const std::vector<DefinitionFinding>& findings) {
    QStringList texts;
    for (const DefinitionFinding& finding : findings)
        texts += finding.text;
    return texts;
}

// The last backup and the way to make one; a database server makes its own.
void tellBackup(RunQuestionFacts& question) {
    question.backup = company::backupProblem(question.company);
    if (!question.backup.isEmpty())
        return;
    const std::optional<company::Backup> last = company::lastBackup(question.company);
    question.backup = last ? QStringLiteral("viimeisin ") + framework::backupText(*last)
                           : QStringLiteral("yrityksestä ei ole tehty varmuuskopiota");
    question.makeBackup = [](QWidget* parent) {
        const std::optional<company::Backup> made = framework::takeBackup(parent);
        return made ? QStringLiteral("tehty ja tarkastettu ") + framework::backupText(*made)
                    : QString();
    };
}

}  // namespace

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
        question.findings = textsOf(definitionFindings(loaded, facts));
        question.lateFindings = [&](qint64 products, const std::function<bool()>& stop) {
            CompanyFindingOptions looked;
            if (products >= 0)
                looked.products = products;
            looked.freeBytes = QStorageInfo(company::currentCompany().dataFolder).bytesAvailable();
            looked.stop = stop;
            return textsOf(companyFindings(m_database, loaded.definition, looked));
        };
        tellBackup(question);
        RunQuestion window(this, m_database, loaded.definition, question);
        agreed = framework::Dialogs::exec(window);
        if (agreed)
            options.agreedProblems = question.problems;
    });
    return agreed;
}

void TAlvMuutosLomake::showChangesOfRun() {
    const auto run = m_database.journal()->run(m_lastRun->result.run);
    if (!run)
        return;
    ChangesContext context;
    context.company = company::currentCompany().name;
    context.title = runTitle(*run) + QStringLiteral(", ") + framework::momentText(run->started);
    context.run = run->number;
    context.database = &m_database;
    context.writePdf = [this](const QString& file) { framework::writePdf(report(), file); };
    showRunChanges({run->number}, context, this);
}

}  // namespace vatchange
