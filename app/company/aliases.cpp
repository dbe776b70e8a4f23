#include "app/company/aliases.h"

#include <QSettings>
#include <algorithm>
#include <memory>
#include <vector>

#include "app/company/company.h"
#include "app/company/ini_file.h"
#include "app/company/user_settings.h"
#include "data/error.h"

namespace company {

namespace {

const QString kAliases = QStringLiteral("Aliases/");
const QString kPhysicalName = QStringLiteral("/PhysicalName");
const QString kLocalFilePath = QStringLiteral("/LocalFilePath");

/// The settings of an alias that are written only where they are set.
struct OptionalSetting {
    const char* key;
    QString Alias::*value;
};
constexpr OptionalSetting kOptionalSettings[] = {
    {"/OwnerName", &Alias::ownerName},   {"/Server", &Alias::server},
    {"/DataSource", &Alias::dataSource}, {"/UserName", &Alias::userName},
    {"/Password", &Alias::password},     {"/OdbcAttributes", &Alias::odbcAttributes},
};
constexpr qsizetype kMaxNameLength = 80;

using Store = std::unique_ptr<QSettings>;

void requireHealthy(const QSettings& store) {
    if (store.status() == QSettings::FormatError)
        throw data::DataError(data::ErrorKind::Damaged, store.fileName(),
                              QStringLiteral("the settings file is damaged"));
    if (store.status() == QSettings::AccessError)
        throw data::DataError(data::ErrorKind::Io, store.fileName(),
                              QStringLiteral("the settings file cannot be read or written"));
}

#ifndef Q_OS_WIN
/// QSettings takes a file that it cannot open for a missing one, and tells of a damaged one only
/// the first time in a process; then it would write what it could read of it in its place.
void requireReadable(const QString& fileName) {
    if (const int line = IniFile::read(fileName).strayLine(); line > 0)
        throw data::DataError(data::ErrorKind::Damaged, fileName,
                              QStringLiteral("line %1 is no setting").arg(line));
}
#endif

/// The places that may know an alias, the one that is written first.
std::vector<Store> openStores() {
    std::vector<Store> stores;
#ifdef Q_OS_WIN
    // The user's part is one for programs of 32 and 64 bits. The machine's part is two: what a
    // 32-bit program registers for all users stands in its own.
    const QString user = QStringLiteral("HKEY_CURRENT_USER\\Software\\Taksavaihe");
    const QString machine = QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Taksavaihe");
    stores.push_back(std::make_unique<QSettings>(user, QSettings::NativeFormat));
    stores.push_back(std::make_unique<QSettings>(machine, QSettings::Registry64Format));
    stores.push_back(std::make_unique<QSettings>(machine, QSettings::Registry32Format));
#else
    const QString file = userSettingsFolder() + QStringLiteral("/aliases.ini");
    requireReadable(file);
    stores.push_back(std::make_unique<QSettings>(file, QSettings::IniFormat));
#endif
    return stores;
}

QStringList namesIn(QSettings& store) {
    store.beginGroup(kAliases);
    QStringList names = store.childGroups();
    store.endGroup();
    return names;
}

/// The name as the store writes it; empty when it has none such.
QString spellingIn(QSettings& store, const QString& name) {
    const QStringList names = namesIn(store);
    if (names.contains(name))
        return name;
    const auto found = std::find_if(names.begin(), names.end(), [&name](const QString& known) {
        return sameIgnoringAsciiCase(known, name);
    });
    return found == names.end() ? QString() : *found;
}

Alias readAlias(const QSettings& store, const QString& name) {
    const QString key = kAliases + name;
    Alias alias{name,
                store.value(key + kPhysicalName).toString(),
                store.value(key + kLocalFilePath).toString(),
                {}};
    for (const OptionalSetting& setting : kOptionalSettings)
        alias.*setting.value = store.value(key + QLatin1String(setting.key)).toString();
    return alias;
}

void writeThrough(QSettings& store) {
    store.sync();
    requireHealthy(store);
}

enum class NameFault { None, Empty, Blanks, Long, Control, Separator, Dots, Switch };

NameFault nameFault(const QString& name) {
    if (name.trimmed().isEmpty())
        return NameFault::Empty;
    if (name.trimmed() != name)
        return NameFault::Blanks;
    if (name.size() > kMaxNameLength)
        return NameFault::Long;
    if (!name.isValidUtf16() || std::any_of(name.begin(), name.end(), [](QChar c) {
            return c.category() == QChar::Other_Control;
        }))
        return NameFault::Control;
    if (name.startsWith(u'-') || name.startsWith(u'/'))
        return NameFault::Switch;
    if (name.contains(u'/') || name.contains(u'\\'))
        return NameFault::Separator;
    if (name == u"." || name == u"..")
        return NameFault::Dots;
    return NameFault::None;
}

}  // namespace

QStringList aliasNames() {
    QStringList names;
    for (const Store& store : openStores()) {
        for (const QString& name : namesIn(*store)) {
            const bool known = std::any_of(names.begin(), names.end(), [&name](const QString& n) {
                return sameIgnoringAsciiCase(n, name);
            });
            if (!known)
                names.append(name);
        }
    }
    sortForFinnishEyes(names);
    return names;
}

std::optional<Alias> findAlias(const QString& name) {
    for (const Store& store : openStores()) {
        const QString spelling = spellingIn(*store, name);
        if (!spelling.isEmpty())
            return readAlias(*store, spelling);
    }
    return std::nullopt;
}

void storeAlias(const Alias& alias) {
    if (const QString problem = aliasNameProblem(alias.name); !problem.isEmpty())
        throw data::DataError(data::ErrorKind::BadValue, QString(), problem);
    const std::vector<Store> stores = openStores();
    QSettings& store = *stores.front();
    if (const QString old = spellingIn(store, alias.name); !old.isEmpty())
        store.remove(kAliases + old);
    const QString key = kAliases + alias.name;
    store.setValue(key + kPhysicalName, alias.physicalName);
    store.setValue(key + kLocalFilePath, alias.localFilePath);
    for (const OptionalSetting& setting : kOptionalSettings)
        if (const QString& value = alias.*setting.value; !value.isEmpty())
            store.setValue(key + QLatin1String(setting.key), value);
    writeThrough(store);
}

bool removeAlias(const QString& name) {
    bool removed = false;
    for (const Store& store : openStores()) {
        const QString spelling = spellingIn(*store, name);
        if (spelling.isEmpty())
            continue;
        store->remove(kAliases + spelling);
        writeThrough(*store);
        removed = true;
    }
    return removed;
}

QString aliasNameProblem(const QString& name) {
    switch (nameFault(name)) {
        case NameFault::None:
            return {};
        case NameFault::Empty:
            return QStringLiteral("the company has no name");
        case NameFault::Blanks:
            return QStringLiteral("company name \"%1\" begins or ends with a blank").arg(name);
        case NameFault::Long:
            return QStringLiteral("company name \"%1\" is longer than %2 characters")
                .arg(name, QString::number(kMaxNameLength));
        case NameFault::Control:
            return QStringLiteral("the company name holds a control character");
        case NameFault::Separator:
            return QStringLiteral("company name \"%1\" holds / or \\").arg(name);
        case NameFault::Dots:
            return QStringLiteral("\"%1\" cannot be a company name").arg(name);
        case NameFault::Switch:
            return QStringLiteral("company name \"%1\" begins with - or /, as a switch does")
                .arg(name);
    }
    return {};
}

QString aliasNameProblemFinnish(const QString& name) {
    switch (nameFault(name)) {
        case NameFault::None:
            return {};
        case NameFault::Empty:
            return QStringLiteral("Yrityksellä ei ole nimeä");
        case NameFault::Blanks:
            return QStringLiteral("Yrityksen nimen \"%1\" alussa tai lopussa on välilyönti")
                .arg(name);
        case NameFault::Long:
            return QStringLiteral("Yrityksen nimi \"%1\" on yli %2 merkkiä pitkä")
                .arg(name, QString::number(kMaxNameLength));
        case NameFault::Control:
            return QStringLiteral("Yrityksen nimessä on ohjausmerkki");
        case NameFault::Separator:
            return QStringLiteral("Yrityksen nimessä \"%1\" on / tai \\").arg(name);
        case NameFault::Dots:
            return QStringLiteral("\"%1\" ei kelpaa yrityksen nimeksi").arg(name);
        case NameFault::Switch:
            return QStringLiteral("Yrityksen nimen \"%1\" alussa on - tai /, kuten valitsimessa")
                .arg(name);
    }
    return {};
}

QString engineSetting(const QString& key) {
    for (const Store& store : openStores()) {
        const QString value = store->value(QStringLiteral("Engine/") + key).toString();
        if (!value.isEmpty())
            return value;
    }
    return {};
}

bool localDefinitions(const QString& formName) {
    const QString key = QStringLiteral("Lomakkeet/%1/PaikallinenMaaritys").arg(formName);
    for (const Store& store : openStores()) {
        if (store->contains(key))
            return store->value(key).toBool();
    }
    return false;
}

}  // namespace company
