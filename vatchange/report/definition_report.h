#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "vatchange/definition/change_definition.h"
#include "vatchange/report/report_html.h"

namespace vatchange {

/// Names of the company that the description of a definition uses.
struct DefinitionNames {
    QStringList levels;                 ///< price levels; index 0: "Ei muutosta"
    QMap<int, QString> customerGroups;  ///< by number
    QMap<int, QString> rates;           ///< of VAT classes, "24%"
};

/// Describes all parameters of a definition in Finnish, as sections of a report.
void describeDefinition(ReportHtml& html, const ChangeDefinition& definition,
                        const DefinitionNames& names);

}  // namespace vatchange
