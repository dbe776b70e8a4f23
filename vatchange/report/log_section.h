#pragma once

#include "vatchange/report/log_excerpt.h"
#include "vatchange/report/report_html.h"

namespace vatchange {

/// A part of the change log in a report.
void logSection(ReportHtml& html, const QString& logName, const LogExcerpt& log);

}  // namespace vatchange
