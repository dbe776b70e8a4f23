#pragma once

#include <QString>
#include <utility>
#include <vector>

#include "vatchange/definition/definition_codec.h"

namespace vatchange {

/// What loading a definition did not take as the file has it.
struct LoadFinding {
    enum class Kind {
        Unreadable,     ///< the value could not be read: the default took its place
        MissingClass,   ///< the definition names no VAT class: 0 took its place
        UnknownSource,  ///< no price column: the level is left unchanged
        CarriedOver     ///< a coefficient of the previous VAT change, replaced
    };
    Kind kind;
    QString control;
    QString saved;  ///< the text of the file
    QString now;    ///< the text of the value that took its place

    bool operator==(const LoadFinding&) const = default;
};

/// A definition as it is run, with what loading found. A value that was not loaded has no findings.
struct LoadedDefinition {
    LoadedDefinition() = default;
    LoadedDefinition(ChangeDefinition value, std::vector<LoadFinding> found = {})
        : definition(std::move(value)), findings(std::move(found)) {}

    ChangeDefinition definition;
    std::vector<LoadFinding> findings;
};

/// A level whose source is no price column is not changed: no source, coefficient 1, VAT-free price
/// not kept. @return whether its source is none.
bool resetWithoutSource(PriceLevelChange& level);

/// Applies the rules of loading to a value: sources are validated, coefficients of the previous VAT
/// change are carried over. Idempotent.
std::vector<LoadFinding> applyLoadRules(ChangeDefinition& definition);

/// Decodes a saved definition and applies the rules of loading.
LoadedDefinition loadDefinition(const framework::SavedDefinition& saved);

/// The findings of a load that still hold for a definition that was edited since: those whose
/// control has kept the value that the load gave it.
std::vector<LoadFinding> stillHolding(const std::vector<LoadFinding>& findings,
                                      const ChangeDefinition& definition);

}  // namespace vatchange
