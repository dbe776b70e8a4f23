#pragma once

#include <QString>

namespace company {

/// The company in use, one per process. Its name is also the database name of record tables and the
/// data source name of the SQL connection.
struct Company {
    QString name;
    QString dataFolder;   ///< PhysicalName of the alias; holds the change log
    QString localFolder;  ///< LocalFilePath of the alias; may be empty
    QString ownerName;    ///< OwnerName of the alias; usually empty
    QString logFolder;    ///< of the change log; empty: the data folder
};

const Company& currentCompany();
/// Makes a company the current one, with name and folders from its alias. @return false, leaving
/// the current one, if there is no such alias (case of a to z ignored).
bool takeIntoUse(const QString& name);

/// Replaces the current company by another one, such as a copy, for the life of this object.
/// Substitutions may be nested; nothing else may change the current company meanwhile.
class CompanySubstitution {
  public:
    explicit CompanySubstitution(Company company);
    ~CompanySubstitution();
    CompanySubstitution(const CompanySubstitution&) = delete;
    CompanySubstitution& operator=(const CompanySubstitution&) = delete;

  private:
    Company m_replaced;
};

/// Appends the separator ("\" or "/"). Unchanged: texts shorter than three characters, except a
/// drive ("C:"), and texts that end with it.
QString withTrailingSeparator(const QString& folder, QChar separator);
/// The platform's separator for withTrailingSeparator().
QChar platformSeparator();

/// A file in the company's data folder. An empty folder gives the bare name, relative to the
/// working folder.
QString dataFolderFile(const QString& fileName);
/// The same in the folder of the change log.
QString logFolderFile(const QString& fileName);

}  // namespace company
