#include "company/company.h"

#include <QDir>
#include <utility>

#include "company/aliases.h"

namespace company {

namespace {

Company& current() {
    static Company company;
    return company;
}

}  // namespace

const Company& currentCompany() {
    return current();
}

bool takeIntoUse(const QString& name) {
    const std::optional<Alias> alias = findAlias(name);
    if (!alias)
        return false;
    current() = {alias->name, alias->physicalName, alias->localFilePath, alias->ownerName,
                 QString()};
    return true;
}

CompanySubstitution::CompanySubstitution(Company company)
    : m_replaced(std::exchange(current(), std::move(company))) {}

CompanySubstitution::~CompanySubstitution() {
    current() = std::move(m_replaced);
}

QString withTrailingSeparator(const QString& folder, QChar separator) {
    const bool drive = folder.size() == 2 && folder.at(1) == u':';
    if (!drive && (folder.size() < 3 || folder.endsWith(separator)))
        return folder;
    return folder + separator;
}

QChar platformSeparator() {
    return QDir::separator();
}

QString dataFolderFile(const QString& fileName) {
    return withTrailingSeparator(current().dataFolder, platformSeparator()) + fileName;
}

QString logFolderFile(const QString& fileName) {
    if (current().logFolder.isEmpty())
        return dataFolderFile(fileName);
    return withTrailingSeparator(current().logFolder, platformSeparator()) + fileName;
}

}  // namespace company
