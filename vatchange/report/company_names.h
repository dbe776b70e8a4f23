#pragma once

#include "data/engine/engine.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/report/definition_report.h"

namespace vatchange {

/// Names of price levels and customer groups as the company has them now; a missing level is named
/// by its number. Rates as given. @throws data::DataError.
DefinitionNames companyNames(data::Database& database, const VatRates& rates);

}  // namespace vatchange
