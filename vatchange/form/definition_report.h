#pragma once

#include <QString>
#include <QStringList>

#include "vatchange/rules/change_definition.h"

namespace vatchange {

/// What the report of a definition says beside the definition itself.
struct ReportHeading {
    QString company;
    QString name;
    QString description;
    QString printed;         ///< date and time, as shown
    QString sourceRate;      ///< "24%", or empty
    QString targetRate;      ///< the same of the new class
    QStringList levelNames;  ///< index 0: "Ei muutosta"
};

/// A definition in words, in Finnish, as HTML for a PDF.
QString definitionReport(const ChangeDefinition& definition, const ReportHeading& heading);

}  // namespace vatchange
