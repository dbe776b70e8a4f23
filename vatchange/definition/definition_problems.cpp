#include "vatchange/definition/definition_problems.h"

#include <algorithm>

namespace vatchange {

namespace {

using Kind = LoadFinding::Kind;

/// The saved value of a control, even if loading replaced it.
QString savedText(const LoadedDefinition& loaded, const QString& control) {
    for (const LoadFinding& finding : loaded.findings) {
        if (finding.kind == Kind::CarriedOver && finding.control == control)
            return finding.saved;
    }
    return fieldText(changeField(control), loaded.definition);
}

void addLoadProblems(const LoadedDefinition& loaded, std::vector<DefinitionProblem>& problems) {
    for (const LoadFinding& finding : loaded.findings) {
        if (finding.kind == Kind::Unreadable)
            problems.push_back(
                {finding.control, finding.saved, QStringLiteral("arvoa ei voi lukea")});
        else if (finding.kind == Kind::MissingClass)
            problems.push_back({finding.control, {}, QStringLiteral("arvo puuttuu määrittelystä")});
    }
}

void addCoefficientProblems(const LoadedDefinition& loaded,
                            std::vector<DefinitionProblem>& problems) {
    for (const QString& control : usedCoefficients(loaded.definition)) {
        const auto& member = std::get<DefinitionMember<double>>(changeField(control).member);
        if (member.of(loaded.definition) > 0)
            continue;
        const QString saved = savedText(loaded, control);
        const QString now = fieldText(changeField(control), loaded.definition);
        QString reason = QStringLiteral("kertoimen on oltava suurempi kuin 0");
        if (saved != now)
            reason = QStringLiteral("edellisen muutoksen kertoimesta tulee %1, ").arg(now) + reason;
        problems.push_back({control, saved, reason});
    }
}

QString numbersText(const std::vector<int>& numbers) {
    QStringList texts;
    for (const int number : numbers)
        texts.append(QString::number(number));
    return texts.join(u',');
}

}  // namespace

QStringList usedCoefficients(const ChangeDefinition& d) {
    QStringList used;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const bool changed =
            d.products && isPriceColumn(d.levels[static_cast<std::size_t>(level - 1)].source);
        if (changed || (level == 1 && d.changesDependents()))
            used.append(coefficientControl(level));
    }
    if (d.products || d.changesDependents())
        used.append(kPurchaseControl);
    if (d.products)
        used.append(kLastPurchaseControl);
    return used;
}

std::vector<int> missingGroups(const ChangeDefinition& definition, const CompanyFacts& facts) {
    std::vector<int> missing;
    if (facts.customerGroups) {
        std::copy_if(definition.customerGroups.begin(), definition.customerGroups.end(),
                     std::back_inserter(missing),
                     [&facts](int group) { return facts.customerGroups->count(group) == 0; });
    }
    return missing;
}

QString DefinitionProblem::text() const {
    return QStringLiteral("%1=%2 (%3): %4")
        .arg(control, value, changeField(control).accessibleName, reason);
}

std::vector<DefinitionProblem> definitionProblems(const LoadedDefinition& loaded,
                                                  const CompanyFacts& facts) {
    const ChangeDefinition& d = loaded.definition;
    std::vector<DefinitionProblem> problems;
    addLoadProblems(loaded, problems);
    if (d.sourceClass != 0 && facts.vatClasses && facts.vatClasses->count(d.sourceClass) == 0) {
        problems.push_back({kSourceClassControl, QString::number(d.sourceClass),
                            QStringLiteral("luokkaa ei ole olemassa"), true});
    }
    if (d.salesOrders && d.targetClass > kHighestOrderClass) {
        problems.push_back({kTargetClassControl, QString::number(d.targetClass),
                            QStringLiteral("myyntitilausten luokka voi olla enintään %1")
                                .arg(kHighestOrderClass)});
    }
    addCoefficientProblems(loaded, problems);
    const std::vector<int> missing = missingGroups(d, facts);
    if (d.customerPriceLists && !missing.empty() && missing == d.customerGroups) {
        problems.push_back({kCustomerGroupsControl, numbersText(missing),
                            QStringLiteral("yhtään valituista asiakasryhmistä ei enää ole")});
    }
    return problems;
}

void dropMissingGroups(ChangeDefinition& definition, const CompanyFacts& facts) {
    const std::vector<int> missing = missingGroups(definition, facts);
    if (missing == definition.customerGroups)
        return;
    std::erase_if(definition.customerGroups, [&missing](int group) {
        return std::find(missing.begin(), missing.end(), group) != missing.end();
    });
}

}  // namespace vatchange
