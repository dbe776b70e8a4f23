#pragma once

#include <functional>
#include <optional>

#include "data/engine/engine.h"
#include "vatchange/definition/definition_findings.h"

namespace vatchange {

/// Reads the facts for checking a definition. Facts from an unreadable table stay unknown; the
/// steps that need the table report it.
CompanyFacts readCompanyFacts(data::Database& database, const ChangeDefinition& definition);

/// Number of products that the definition selects. @throws data::DataError.
qint64 selectedProducts(data::Database& database, const ChangeDefinition& definition);

struct CompanyFindingOptions {
    qint64 exceptRun = 0;             ///< the run itself, which is no earlier one
    bool resumed = false;             ///< it has changed rows: what is selected now says nothing
    std::optional<qint64> products;   ///< selectedProducts(), if known
    qint64 freeBytes = -1;            ///< on the disk of the company's folder, if known
    std::function<bool()> stop = {};  ///< asked between the queries; true ends the search
};

/// The findings that need the company's database, from a few counting queries. A query that fails
/// gives none: the step that needs its table reports it.
std::vector<DefinitionFinding> companyFindings(data::Database& database,
                                               const ChangeDefinition& definition,
                                               const CompanyFindingOptions& options = {});

}  // namespace vatchange
