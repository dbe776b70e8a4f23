#pragma once

#include "framework/ui/pdf_report.h"
#include "vatchange/changes/change_list.h"
#include "vatchange/changes/change_overview.h"
#include "vatchange/report/report_html.h"

namespace vatchange {

// The sections of a report about what a list of changes holds.

/// Changed records by table and prices by level.
void countSections(ReportHtml& html, const ChangeOverview& overview);

/// The two pictures, which `pictures` gets; nothing if no price changed.
void pictureSections(ReportHtml& html, std::vector<framework::ReportPicture>& pictures,
                     const ChangeOverview& overview);

/// Findings but those of passedOverSections(), each with its first rows.
void findingSections(ReportHtml& html, const ChangeList& list);

/// Products and orders that were passed over, with the reason.
void passedOverSections(ReportHtml& html, const ChangeList& list);

}  // namespace vatchange
