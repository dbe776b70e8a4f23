#include "framework/core/definition_store.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <utility>
#include <vector>

#include "company/aliases.h"
#include "company/company.h"
#include "data/error.h"
#include "platform/ini_change.h"
#include "platform/read_file.h"
#include "platform/text_order.h"

namespace framework {

namespace {

const QString kDescription = QStringLiteral("Selite");

/// The name as spelled in the file; nothing if not found.
std::optional<QString> nameInFile(const platform::IniFile& file, const QString& name) {
    const QString wanted = name.trimmed();
    for (const QString& known : file.sections()) {
        if (!known.isEmpty() && known.compare(wanted, Qt::CaseInsensitive) == 0)
            return known;
    }
    return std::nullopt;
}

/// Rewrites the definition without malformed lines, which would keep it from being loaded.
void removeMalformedLines(platform::IniFile& ini, const QString& name) {
    std::vector<std::pair<QString, QString>> settings;
    for (const QString& key : ini.keys(name))
        settings.emplace_back(key, ini.value(name, key).value_or(QString()));
    ini.removeSection(name);
    for (const auto& [key, value] : settings)
        ini.setValue(name, key, value);
}

/// Creates only the last folder: a missing company folder is an error (an unmounted share).
void makeFolder(const QString& fileName) {
    const QString folder = QFileInfo(fileName).absolutePath();
    if (!QFileInfo(folder).isDir() && !QDir().mkdir(folder))
        throw platform::folderCannotBeMade(folder);
}

}  // namespace

DefinitionStore::DefinitionStore() = default;

DefinitionStore::DefinitionStore(QString settingsFolder)
    : m_settingsFolder(std::move(settingsFolder)) {}

QString DefinitionStore::nameToLoad(const QString& name) {
    const QString trimmed = name.trimmed();
    return trimmed.isEmpty() ? kDefaultName : trimmed;
}

QString DefinitionStore::settingsFolder(const QString& formName) const {
    if (m_settingsFolder)
        return *m_settingsFolder;
    const company::Company& company = company::currentCompany();
    return !company.localFolder.isEmpty() && company::localDefinitions(formName)
               ? company.localFolder
               : company.dataFolder;
}

QString DefinitionStore::fileName(const QString& formName) const {
    const QChar separator = company::platformSeparator();
    return company::withTrailingSeparator(settingsFolder(formName), separator) +
           QStringLiteral("MAARITYS") + separator + formName + QStringLiteral(".INI");
}

QStringList DefinitionStore::GetValues(const QString& formName) const {
    QStringList names = platform::IniFile::read(fileName(formName)).sections();
    names.removeAll(QString());
    platform::sortInFinnishOrder(names);
    return names;
}

bool DefinitionStore::has(const QString& formName, const QString& name) const {
    return nameInFile(platform::IniFile::read(fileName(formName)), name).has_value();
}

std::optional<SavedDefinition> DefinitionStore::load(const QString& formName,
                                                     const QString& name) const {
    const QString path = fileName(formName);
    const platform::IniFile file = platform::IniFile::read(path);
    const auto found = nameInFile(file, name);
    if (!found)
        return std::nullopt;
    if (const int line = file.malformedLine(*found); line > 0)
        throw data::DataError(data::ErrorKind::Damaged, path,
                              QStringLiteral("line %1 of definition \"%2\" is no setting")
                                  .arg(QString::number(line), *found))
            .inFinnish(QStringLiteral("rivi %1 määrittelyssä \"%2\" ei ole asetus")
                           .arg(QString::number(line), *found),
                       QStringLiteral("Korjaa rivi tai talleta määrittely uudelleen."));
    SavedDefinition definition;
    definition.name = *found;
    definition.repeatedLine = file.repeatedLine(*found);
    for (const QString& key : file.keys(definition.name)) {
        const QString value = file.value(definition.name, key).value_or(QString());
        if (key.compare(kDescription, Qt::CaseInsensitive) == 0)
            definition.description = value;
        else
            definition.values.insert(key, value);
    }
    return definition;
}

void DefinitionStore::save(const QString& formName, const SavedDefinition& definition) {
    const QString file = fileName(formName);
    const QString name = definition.name.trimmed();
    if (const QString problem = nameProblem(name); !problem.isEmpty())
        throw data::DataError(data::ErrorKind::BadValue, file, problem);
    makeFolder(file);
    platform::changeIniFile(file, [&](platform::IniFile& ini) {
        if (ini.malformedLine(name) > 0)
            removeMalformedLines(ini, nameInFile(ini, name).value_or(name));
        ini.setValue(name, kDescription, definition.description);
        for (auto it = definition.values.constBegin(); it != definition.values.constEnd(); ++it)
            ini.setValue(name, it.key(), it.value());
        for (const QString& key : definition.removed)
            ini.removeKey(name, key);
        return true;
    });
}

bool DefinitionStore::remove(const QString& formName, const QString& name) {
    const QString file = fileName(formName);
    if (!QFileInfo::exists(file))
        return false;
    bool removed = false;
    platform::changeIniFile(file, [&](platform::IniFile& ini) {
        removed = ini.removeSection(name.trimmed());
        return removed;
    });
    return removed;
}

QString DefinitionStore::nameProblem(const QString& name) {
    if (name.trimmed().isEmpty())
        return QStringLiteral("Anna määrittelylle nimi");
    if (name.contains(u'[') || name.contains(u']'))
        return QStringLiteral("Määrittelyn nimessä \"%1\" ei saa olla hakasulkeita").arg(name);
    if (!name.isValidUtf16() || std::any_of(name.begin(), name.end(), [](QChar c) {
            return c.category() == QChar::Other_Control;
        }))
        return QStringLiteral("Määrittelyn nimessä ei saa olla ohjausmerkkejä");
    return {};
}

}  // namespace framework
