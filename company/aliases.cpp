#include "company/aliases.h"

#include <QVariant>
#include <algorithm>
#include <vector>

#include "data/error.h"
#include "platform/settings_store.h"
#include "platform/text_order.h"

namespace company {

namespace {

const QString kAliases = QStringLiteral("Aliases");
const QString kPhysicalName = QStringLiteral("PhysicalName");
const QString kLocalFilePath = QStringLiteral("LocalFilePath");

using Use = platform::SettingsStore::Use;

/// Written only if set.
struct OptionalSetting {
    const char* key;
    QString Alias::*value;
};
constexpr OptionalSetting kOptionalSettings[] = {
    {"OwnerName", &Alias::ownerName},   {"Server", &Alias::server},
    {"DataSource", &Alias::dataSource}, {"UserName", &Alias::userName},
    {"Password", &Alias::password},     {"OdbcAttributes", &Alias::odbcAttributes},
};
constexpr qsizetype kMaxNameLength = 80;

QString groupOf(const QString& name) {
    return kAliases + u'/' + name;
}

/// The name as spelled in the store; empty if not found.
QString spellingIn(const platform::SettingsStore& store, const QString& name) {
    const QStringList names = store.groupsIn(kAliases);
    if (names.contains(name))
        return name;
    const auto found = std::find_if(names.begin(), names.end(), [&name](const QString& known) {
        return platform::sameIgnoringAsciiCase(known, name);
    });
    return found == names.end() ? QString() : *found;
}

Alias readAlias(const platform::SettingsStore& store, const QString& name) {
    const auto read = [&, group = groupOf(name)](const QString& key) {
        return store.value(group, key).value_or(QString());
    };
    Alias alias{name, read(kPhysicalName), read(kLocalFilePath), {}};
    for (const OptionalSetting& setting : kOptionalSettings)
        alias.*setting.value = read(QLatin1String(setting.key));
    return alias;
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
    for (const platform::SettingsStore& store : platform::SettingsStore::openAll(Use::Read)) {
        for (const QString& name : store.groupsIn(kAliases)) {
            const bool known = std::any_of(names.begin(), names.end(), [&name](const QString& n) {
                return platform::sameIgnoringAsciiCase(n, name);
            });
            if (!known)
                names.append(name);
        }
    }
    platform::sortInFinnishOrder(names);
    return names;
}

std::optional<Alias> findAlias(const QString& name) {
    for (const platform::SettingsStore& store : platform::SettingsStore::openAll(Use::Read)) {
        const QString spelling = spellingIn(store, name);
        if (!spelling.isEmpty())
            return readAlias(store, spelling);
    }
    return std::nullopt;
}

void storeAlias(const Alias& alias) {
    if (const QString problem = aliasNameProblem(alias.name); !problem.isEmpty())
        throw data::DataError(data::ErrorKind::BadValue, QString(), problem);
    std::vector<platform::SettingsStore> stores = platform::SettingsStore::openAll(Use::Write);
    platform::SettingsStore& store = stores.front();
    if (const QString old = spellingIn(store, alias.name); !old.isEmpty())
        store.removeGroup(groupOf(old));
    const QString group = groupOf(alias.name);
    store.add(group, kPhysicalName, alias.physicalName);
    store.add(group, kLocalFilePath, alias.localFilePath);
    for (const OptionalSetting& setting : kOptionalSettings)
        if (const QString& value = alias.*setting.value; !value.isEmpty())
            store.add(group, QLatin1String(setting.key), value);
    store.save();
}

bool removeAlias(const QString& name) {
    if (!findAlias(name))
        return false;
    bool removed = false;
    for (platform::SettingsStore& store : platform::SettingsStore::openAll(Use::Write)) {
        const QString spelling = spellingIn(store, name);
        if (spelling.isEmpty())
            continue;
        store.removeGroup(groupOf(spelling));
        store.save();
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
    for (const platform::SettingsStore& store : platform::SettingsStore::openAll(Use::Read)) {
        QString value = store.value(QStringLiteral("Engine"), key).value_or(QString());
        if (!value.isEmpty())
            return value;
    }
    return {};
}

bool localDefinitions(const QString& formName) {
    const QString group = QStringLiteral("Lomakkeet/") + formName;
    for (const platform::SettingsStore& store : platform::SettingsStore::openAll(Use::Read)) {
        if (const auto value = store.value(group, QStringLiteral("PaikallinenMaaritys")))
            return QVariant(*value).toBool();
    }
    return false;
}

}  // namespace company
