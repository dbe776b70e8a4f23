#include "vatchange/definition/load_rules.h"

#include <algorithm>

#include "vatchange/definition/coefficients.h"

namespace vatchange {

namespace {

using Kind = LoadFinding::Kind;

void validateSources(ChangeDefinition& definition, std::vector<LoadFinding>& findings) {
    for (int level = 1; level <= kPriceLevels; ++level) {
        PriceLevelChange& change = definition.levels[static_cast<std::size_t>(level - 1)];
        const PriceLevelChange saved = change;
        const ChangeField& coefficient = changeField(coefficientControl(level));
        const QString savedCoefficient = fieldText(coefficient, definition);
        if (!resetWithoutSource(change))
            continue;
        if (saved.source != kNoSource)
            findings.push_back(
                {Kind::UnknownSource, sourceControl(level), saved.source, change.source});
        else if (saved.coefficient != change.coefficient)
            findings.push_back({Kind::NoSource, coefficient.control, savedCoefficient,
                                fieldText(coefficient, definition)});
    }
}

void carryCoefficientsOver(ChangeDefinition& definition, std::vector<LoadFinding>& findings) {
    for (const ChangeField& field : changeFields()) {
        if (field.kind != FieldKind::Coefficient)
            continue;
        double& coefficient = std::get<DefinitionMember<double>>(field.member).of(definition);
        if (const auto now = carriedOverCoefficient(coefficient)) {
            const QString saved = fieldText(field, definition);
            coefficient = *now;
            findings.push_back(
                {Kind::CarriedOver, field.control, saved, fieldText(field, definition)});
        }
    }
}

}  // namespace

bool resetWithoutSource(PriceLevelChange& level) {
    if (isPriceColumn(level.source))
        return false;
    level = PriceLevelChange();
    return true;
}

std::vector<LoadFinding> applyLoadRules(ChangeDefinition& definition) {
    std::vector<LoadFinding> findings;
    validateSources(definition, findings);
    carryCoefficientsOver(definition, findings);
    return findings;
}

QString repeatedText(int line) {
    return QStringLiteral(
               "määrittelyn nimi on tiedostossa toisen kerran rivillä %1: vain ensimmäinen luetaan")
        .arg(line);
}

LoadedDefinition loadDefinition(const framework::SavedDefinition& saved) {
    const DecodedDefinition decoded = decodeDefinition(saved);
    LoadedDefinition loaded(decoded.definition);
    loaded.repeatedLine = saved.repeatedLine;
    for (const UnreadableValue& item : decoded.unreadable) {
        loaded.findings.push_back({Kind::Unreadable, item.control, item.value,
                                   fieldText(changeField(item.control), decoded.definition)});
    }
    for (const QString& control : decoded.missing) {
        const ChangeField& field = changeField(control);
        if (field.kind == FieldKind::Class) {
            loaded.findings.push_back(
                {Kind::MissingClass, control, {}, fieldText(field, decoded.definition)});
        }
    }
    const auto replaced = applyLoadRules(loaded.definition);
    loaded.findings.insert(loaded.findings.end(), replaced.begin(), replaced.end());
    return loaded;
}

std::vector<LoadFinding> remainingFindings(const std::vector<LoadFinding>& findings,
                                           const ChangeDefinition& definition) {
    std::vector<LoadFinding> holding;
    std::copy_if(findings.begin(), findings.end(), std::back_inserter(holding),
                 [&definition](const LoadFinding& finding) {
                     return fieldText(changeField(finding.control), definition) == finding.now;
                 });
    return holding;
}

}  // namespace vatchange
