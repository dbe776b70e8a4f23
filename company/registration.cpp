#include "company/registration.h"

#include <QDir>
#include <QFileInfo>

#include "company/aliases.h"
#include "data/error.h"
#include "engines/embedded/embedded_database.h"
#include "platform/user_settings.h"

namespace company {

namespace {

const QString kLastUsed = QStringLiteral("Yritykset/Viimeksi");
constexpr qsizetype kMostRemembered = 50;

data::DataError refusal(const QString& english, const QString& finnish) {
    return data::DataError::verbatim(data::ErrorKind::BadValue, english, finnish);
}

}  // namespace

void requireFreeName(const QString& name) {
    if (const QString problem = aliasNameProblem(name); !problem.isEmpty())
        throw refusal(problem, aliasNameProblemFinnish(name));
    if (const std::optional<Alias> taken = findAlias(name))
        throw refusal(QStringLiteral("There is a company \"%1\" already (%2).")
                          .arg(taken->name, taken->physicalName),
                      QStringLiteral("Yritys \"%1\" on jo luettelossa (%2).")
                          .arg(taken->name, QDir::toNativeSeparators(taken->physicalName)));
}

QString absoluteFolder(const QString& folder) {
    if (folder.isEmpty())
        throw refusal(QStringLiteral("The folder has no name."), QStringLiteral("Anna kansio."));
    QString absolute = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    // With the replacement character for invalid bytes it would name another folder.
    if (absolute.contains(QChar::ReplacementCharacter))
        throw refusal(QStringLiteral("The name of the folder %1 is not valid UTF-8; rename it.")
                          .arg(absolute),
                      QStringLiteral("Kansion %1 nimi ei ole UTF-8-tekstiä. Nimeä se uudelleen.")
                          .arg(absolute));
    return absolute;
}

void registerCompany(const QString& name, const QString& folder) {
    Alias alias;
    alias.name = name;
    alias.physicalName = QDir::toNativeSeparators(folder);
    storeAlias(alias);
}

void addCompany(const QString& name, const QString& folder) {
    const QString absolute = absoluteFolder(folder);
    requireFreeName(name);
    if (!engines::hasEmbeddedDatabase(absolute))
        throw refusal(QStringLiteral("The folder %1 holds no company.").arg(absolute),
                      QStringLiteral("Kansiossa %1 ei ole yrityksen tietokantaa (%2).")
                          .arg(QDir::toNativeSeparators(absolute), engines::kEmbeddedFileName));
    engines::openEmbedded(name, absolute);
    registerCompany(name, absolute);
}

QStringList companiesByUse() {
    QStringList others = aliasNames();
    QStringList names;
    for (const QString& used : platform::userSettings()->value(kLastUsed).toStringList())
        if (others.removeOne(used))
            names.append(used);
    return names + others;
}

void rememberUse(const QString& name) {
    const std::unique_ptr<QSettings> settings = platform::userSettings();
    QStringList used = settings->value(kLastUsed).toStringList();
    used.removeAll(name);
    used.prepend(name);
    settings->setValue(kLastUsed, used.first(qMin(used.size(), kMostRemembered)));
}

}  // namespace company
