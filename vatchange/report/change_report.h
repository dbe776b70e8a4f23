#pragma once

#include <optional>

#include "framework/ui/pdf_report.h"
#include "vatchange/report/definition_report.h"
#include "vatchange/run/run_summary.h"

namespace vatchange {

/// Contents of a report of the change form.
struct ChangeReport {
    QString company;
    QString name;  ///< of the definition; empty when it is not saved
    QString description;
    ChangeDefinition definition;  ///< as shown in the form
    DefinitionNames names;
    std::optional<RunSummary> lastRun;
};

/// Describes the definition and the last run, if any: one that has a journal by runReport().
/// @throws data::DataError.
framework::Report changeReport(data::Database& database, const ChangeReport& report);

/// Returns the outcome of a run as a sentence for the status line and the report.
QString outcomeText(const RunResult& result);

/// What the user is told of a run whose change log lacks lines.
QString lostLogText(const RunResult& result);

}  // namespace vatchange
