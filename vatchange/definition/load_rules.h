#pragma once

#include <QString>
#include <utility>
#include <vector>

#include "vatchange/definition/definition_codec.h"

namespace vatchange {

/// A value that loading did not take as saved.
struct LoadFinding {
    enum class Kind {
        Unreadable,     ///< replaced by the default
        MissingClass,   ///< no VAT class in the file: 0
        UnknownSource,  ///< not a price column: the level is left unchanged
        NoSource,       ///< a coefficient of a level without a source: 1
        CarriedOver     ///< a coefficient of the previous VAT change, replaced
    };
    Kind kind;
    QString control;
    QString saved;  ///< the text of the file
    QString now;    ///< text of the value used instead

    bool operator==(const LoadFinding&) const = default;
};

/// A definition ready to run, with the findings of its load; none if it was not loaded.
struct LoadedDefinition {
    LoadedDefinition() = default;
    LoadedDefinition(ChangeDefinition value, std::vector<LoadFinding> found = {})
        : definition(std::move(value)), findings(std::move(found)) {}

    ChangeDefinition definition;
    std::vector<LoadFinding> findings;
    int repeatedLine = 0;  ///< SavedDefinition::repeatedLine
};

/// What the user is told of a definition whose name stands twice in the file, in Finnish.
QString repeatedText(int line);

/// Resets a level whose source is not a price column: no source, coefficient 1, VAT-free price not
/// kept. @return whether the level has no source.
bool resetWithoutSource(PriceLevelChange& level);

/// Validates sources and replaces coefficients of the previous VAT change. Idempotent.
std::vector<LoadFinding> applyLoadRules(ChangeDefinition& definition);

/// Decodes a saved definition and applies the load rules.
LoadedDefinition loadDefinition(const framework::SavedDefinition& saved);

/// Returns the findings whose values have not been edited since the load.
std::vector<LoadFinding> remainingFindings(const std::vector<LoadFinding>& findings,
                                           const ChangeDefinition& definition);

}  // namespace vatchange
