// Any bytes as a form's saved definitions: read, decoded, checked, saved and read again.

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "data/error.h"
#include "framework/core/definition_store.h"
#include "fuzz/fuzz.h"
#include "vatchange/definition/definition_findings.h"
#include "vatchange/rules/selection.h"
#include "vatchange/rules/statements.h"

namespace {

// Accepted values read back the same; statements built from a definition's texts contain only its
// integers and names of price columns.
void useDefinition(const framework::SavedDefinition& saved) {
    const vatchange::DecodedDefinition decoded = vatchange::decodeDefinition(saved);
    framework::SavedDefinition written;
    written.values = vatchange::encodeDefinition(decoded.definition, saved);
    const vatchange::DecodedDefinition again = vatchange::decodeDefinition(written);
    require(again.unreadable.empty() && again.missing.empty());
    require(again.definition == decoded.definition);
    require(vatchange::encodeDefinition(again.definition, written) == written.values);

    vatchange::LoadedDefinition loaded = vatchange::loadDefinition(saved);
    require(loaded.findings.size() >= decoded.unreadable.size());
    require(vatchange::remainingFindings(loaded.findings, loaded.definition).size() ==
            loaded.findings.size());
    vatchange::ChangeDefinition& definition = loaded.definition;
    require(vatchange::applyLoadRules(definition).empty());
    static const vatchange::CompanyFacts facts = {{{1, 3, 6}}, {{1, 2}}, {{1, 24.0}}};
    for (const vatchange::DefinitionProblem& problem : vatchange::definitionProblems(loaded, facts))
        require(!problem.reason.isEmpty());
    for (const vatchange::DefinitionFinding& finding :
         vatchange::definitionFindings(loaded, facts, {{{}, definition}}))
        require(!finding.text.isEmpty());
    const bool allCustomers = definition.customerGroups.empty();
    vatchange::dropMissingGroups(definition, facts);
    require(definition.customerGroups.empty() == allCustomers);

    static const QRegularExpression harmless(QStringLiteral("^[A-Za-z0-9_ .,()<>=]*$"));
    require(harmless.match(vatchange::selectionCondition(definition)).hasMatch());
    require(harmless.match(vatchange::groupRangeCondition(definition)).hasMatch());
    static const QRegularExpression assignment(QStringLiteral("^[A-Za-z0-9_ .,()*/+=]*$"));
    require(assignment.match(vatchange::storePriceAssignments(definition, 1.255)).hasMatch());
}

// Also tries any text as the value of each field of the table.
void useText(const QString& text) {
    framework::SavedDefinition saved;
    for (const vatchange::ChangeField& field : vatchange::changeFields())
        saved.values.insert(field.control, text);
    useDefinition(saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 4096)
        return 0;
    static const QTemporaryDir folder;
    const QString form = QStringLiteral("Lomake");
    framework::DefinitionStore store(folder.path());
    static const bool made = QDir(folder.path()).mkpath(QStringLiteral("MAARITYS"));
    require(made);
    {
        QFile file(store.fileName(form));
        require(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    try {
        for (const QString& definitionName : store.GetValues(form)) {
            const std::optional<framework::SavedDefinition> saved =
                store.load(form, definitionName);
            require(saved.has_value());
            useDefinition(*saved);
            for (const QString& value : saved->values)
                useText(value);
            if (!framework::DefinitionStore::nameProblem(definitionName).isEmpty())
                continue;
            store.save(form, *saved);
            require(store.load(form, definitionName)->values == saved->values);
        }
    } catch (const data::DataError& error) {
        require(!error.finnish().contains(u'\n'));
    }
    return 0;
}
