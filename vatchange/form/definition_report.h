#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "vatchange/definition/change_definition.h"
#include "vatchange/form/report_html.h"

namespace vatchange {

/// What the words of a definition need beside the definition itself.
struct DefinitionNames {
    QStringList levels;                 ///< price levels; index 0: "Ei muutosta"
    QMap<int, QString> customerGroups;  ///< by number
    QMap<int, QString> rates;           ///< of VAT classes, "24%"
};

/// All parameters of a definition in words, in Finnish, as sections of a report.
void describeDefinition(ReportHtml& html, const ChangeDefinition& definition,
                        const DefinitionNames& names);

}  // namespace vatchange
