#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <set>
#include <vector>

#include "vatchange/definition/load_rules.h"

namespace vatchange {

/// What judging a definition needs to know of the company's tables; nothing where a table is not
/// known, which judges nothing by it.
struct CompanyFacts {
    std::optional<std::set<int>> vatClasses;
    std::optional<std::set<int>> customerGroups;
};

/// Why a definition must not be run without a person who wants it so.
struct DefinitionProblem {
    QString control;
    QString value;   ///< as the file has it; empty for a missing key
    QString reason;  ///< in Finnish
    bool final =
        false;  ///< no run of the form either: there is nothing that it could sensibly change

    /// "Hinta1Edit=0 (Hinta 1, kerroin): ..."
    QString text() const;
};

/// The problems of a definition: values that could not be read, missing class keys, a source class
/// that does not exist, coefficients of the run that are not above 0, a target class that order
/// rows cannot hold, customer groups of which none is left.
std::vector<DefinitionProblem> definitionProblems(const LoadedDefinition& loaded,
                                                  const CompanyFacts& facts);

/// What looks wrong in a definition and stops nothing, in Finnish, one text a finding: unknown
/// price sources, dropped items of ignore lists, customer groups that no longer exist beside
/// others.
QStringList definitionNotes(const LoadedDefinition& loaded, const CompanyFacts& facts);

/// Takes the customer groups out that no longer exist. The groups stay as they are when none of
/// them is left: no group at all would mean all customers.
void dropMissingGroups(ChangeDefinition& definition, const CompanyFacts& facts);

}  // namespace vatchange
