#include "app/company/company.h"

#include <QCollator>
#include <QDir>
#include <QLocale>
#include <algorithm>

#include "app/company/aliases.h"

namespace company {

namespace {

Company& current() {
    static Company company;
    return company;
}

char16_t foldAscii(QChar c) {
    const char16_t unit = c.unicode();
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

}  // namespace

const Company& currentCompany() {
    return current();
}

bool takeIntoUse(const QString& name) {
    const std::optional<Alias> alias = findAlias(name);
    if (!alias)
        return false;
    current() = {alias->name, alias->physicalName, alias->localFilePath, alias->ownerName};
    return true;
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

bool sameIgnoringAsciiCase(const QString& a, const QString& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](QChar x, QChar y) { return foldAscii(x) == foldAscii(y); });
}

void sortForFinnishEyes(QStringList& names) {
    QCollator collator(QLocale(QLocale::Finnish, QLocale::Finland));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), [&collator](const QString& a, const QString& b) {
        const int order = collator.compare(a, b);
        return order != 0 ? order < 0 : a < b;
    });
}

}  // namespace company
