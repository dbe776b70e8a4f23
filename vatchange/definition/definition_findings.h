#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "vatchange/definition/definition_problems.h"

namespace vatchange {

/// What looks like a mistake in a definition and does not keep it from being run.
enum class DefinitionFindingKind {
    ClassZero,            ///< source or target class 0
    CoefficientRange,     ///< a coefficient in use outside 0.9 to 1.25
    CoefficientReplaced,  ///< a coefficient of the previous change, replaced on loading
    CoefficientUnused,    ///< a level has a coefficient but no price source
    MissingGroup,         ///< a checked customer group no longer exists
    DroppedItem,          ///< an item of an ignore list is no group number
    NoSource,             ///< a price source is no price column
    InvertedRange,        ///< first > last
    KeepVat0Coefficient,  ///< keeps the VAT-free price with a coefficient of other classes
    LimitUnused,          ///< a percent limit without the conversion of products
    ChangedTwice,         ///< moves the target class of an earlier definition of the batch
    Repeated,             ///< repeats an earlier definition, or its name stands twice in the file
    // the rest needs the database
    ChangedEarlier,  ///< an earlier run of the same classes has changed dependent tables
    NoLabelTable,    ///< labels are to be written and there is no table for them
    EmptyVat0,       ///< prices that would become 0 from an empty VAT-free price
    LittleRoom,      ///< too little room on the disk for journal and log
    SelectsNothing   ///< the restrictions select no product
};

/// A finding about a definition.
struct DefinitionFinding {
    DefinitionFindingKind kind = DefinitionFindingKind::ClassZero;
    QString control;  ///< changeFields(); empty if none is to blame
    QString value;    ///< as the file has it
    QString text;     ///< in Finnish, without "Huomaa: "; names the control where it matters
};

/// A definition of a batch that is run before the one that is looked at.
struct EarlierDefinition {
    QString name;
    ChangeDefinition definition;
};

/// The findings that need no database but the facts, in the order of the controls. Costs
/// microseconds: can be called at every keystroke.
std::vector<DefinitionFinding> definitionFindings(
    const LoadedDefinition& loaded, const CompanyFacts& facts,
    const std::vector<EarlierDefinition>& earlier = {});

}  // namespace vatchange
