#pragma once

#include <QString>
#include <QStringList>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "vatchange/definition/load_rules.h"

namespace vatchange {

/// The company's tables that a definition is checked against. Without a table its checks are
/// skipped.
struct CompanyFacts {
    std::optional<std::set<int>> vatClasses;
    std::optional<std::set<int>> customerGroups;
    std::map<int, double> vatRates = {};  ///< in percent; empty: not known
};

/// A reason why a definition runs only after a person has confirmed it.
struct DefinitionProblem {
    QString control;
    QString value;       ///< as the file has it; empty for a missing key
    QString reason;      ///< in Finnish
    bool final = false;  ///< refused in the form, too: the run could not change anything

    /// "Hinta1Edit=0 (Hinta 1, kerroin): ..."
    QString text() const;
};

/// Returns unreadable values, missing class keys, a source class that does not exist, coefficients
/// in use that are not above 0, a target class that order rows cannot hold, and customer groups of
/// which none exists any more.
std::vector<DefinitionProblem> definitionProblems(const LoadedDefinition& loaded,
                                                  const CompanyFacts& facts);

/// The checked customer groups that no longer exist.
std::vector<int> missingGroups(const ChangeDefinition& definition, const CompanyFacts& facts);
/// The controls of the coefficients that a run uses for price tables.
QStringList usedCoefficients(const ChangeDefinition& definition);

/// Removes customer groups that no longer exist, unless that would remove all: an empty list means
/// all customers.
void dropMissingGroups(ChangeDefinition& definition, const CompanyFacts& facts);

}  // namespace vatchange
