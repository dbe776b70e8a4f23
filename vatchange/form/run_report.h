#pragma once

#include <optional>

#include "framework/ui/pdf_report.h"
#include "vatchange/form/definition_report.h"
#include "vatchange/run/run_summary.h"

namespace vatchange {

/// What a report of the change form says.
struct ChangeReport {
    QString company;
    QString name;  ///< of the definition; empty when it is not saved
    QString description;
    ChangeDefinition definition;  ///< what the form says now
    DefinitionNames names;
    std::optional<RunSummary> lastRun;
};

/// The definition in words and, when one was run, what the last run did.
framework::Report changeReport(const ChangeReport& report);

/// How a run ended, as a sentence for the status line and the report.
QString outcomeText(const RunResult& result);

}  // namespace vatchange
