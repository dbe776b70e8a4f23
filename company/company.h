#pragma once

#include <QString>

namespace company {

/// The chosen company, process-wide. The name is the database name of the record tables and the
/// data source name of the SQL connection.
struct Company {
    QString name;
    QString dataFolder;   ///< PhysicalName of the alias; holds the change log
    QString localFolder;  ///< LocalFilePath of the alias; empty when the alias has none
    QString ownerName;    ///< OwnerName of the alias: owner of the record files, mostly empty
};

const Company& currentCompany();
/// Takes a company into use: name and folders from its alias. @return false when there is none of
/// that name (case of a to z ignored); the company in use then stays.
bool takeIntoUse(const QString& name);

/// Appends the separator by the folder rule: an empty text stays empty; two characters whose second
/// is ":" get it; any other text shorter than three characters stays; one that ends with the
/// separator stays; every other text gets it. The separator is '\\' or '/'.
QString withTrailingSeparator(const QString& folder, QChar separator);
/// The platform's separator, as the rule above wants it.
QChar platformSeparator();

/// A file of the company's data folder: the folder by the rule above, then the name. With an empty
/// folder the name alone, so the file is sought in the working folder.
QString dataFolderFile(const QString& fileName);

}  // namespace company
