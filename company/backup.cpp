#include "company/backup.h"

#include <QDir>
#include <QFileInfo>

#include "company/aliases.h"
#include "company/logs.h"
#include "data/clock.h"
#include "data/error.h"
#include "engines/embedded/embedded_database.h"
#include "platform/ini_change.h"

namespace company {

namespace {

const QString kSuffix = QStringLiteral(".ZDB");
const QString kNoteName = QStringLiteral("VARMUUSKOPIO.INI");
const QString kSection = QStringLiteral("Viimeisin");
const QString kFile = QStringLiteral("Tiedosto");
const QString kWhen = QStringLiteral("Aika");
const QString kBytes = QStringLiteral("Koko");
const QString kUser = QStringLiteral("Kayttaja");
const QString kMomentFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");
const QString kNameFormat = QStringLiteral("yyyy-MM-dd hhmmss");

/// Folder of a company of the embedded engine.
QString folderOf(const QString& companyName) {
    if (const QString problem = backupProblem(companyName); !problem.isEmpty())
        throw data::DataError::verbatim(data::ErrorKind::Engine, problem);
    return findAlias(companyName)->physicalName;
}

bool isEmbedded(const Alias& alias) {
    if (alias.physicalName.isEmpty())
        return false;
    // the lock file shows that there was a database
    const QString file = QDir(alias.physicalName).filePath(engines::kEmbeddedFileName);
    return engines::hasEmbeddedDatabase(alias.physicalName) ||
           QFileInfo::exists(file + QStringLiteral("-lock"));
}

/// A file name without the characters that file systems refuse.
QString asFileName(QString name) {
    for (QChar& c : name) {
        if (c < u' ' || QStringLiteral("\\/:*?\"<>|").contains(c))
            c = u'-';
    }
    return name;
}

engines::CopyProgress copyProgress(const BackupProgress& progress) {
    if (!progress)
        return {};
    return [&progress](engines::CopyPhase phase, qint64 done, qint64 total) {
        return progress(
            phase == engines::CopyPhase::Copying ? BackupPhase::Copying : BackupPhase::Checking,
            done, total);
    };
}

QString noteFile(const QString& companyName) {
    const std::optional<Alias> alias = findAlias(companyName);
    return alias && !alias->physicalName.isEmpty() ? QDir(alias->physicalName).filePath(kNoteName)
                                                   : QString();
}

/// A backup that cannot be recorded is still valid.
void remember(const QString& companyName, const Backup& backup) {
    try {
        platform::changeIniFile(noteFile(companyName), [&backup](platform::IniFile& ini) {
            ini.setValue(kSection, kFile, QDir::toNativeSeparators(backup.file));
            ini.setValue(kSection, kWhen, backup.when.toString(kMomentFormat));
            ini.setValue(kSection, kBytes, QString::number(backup.bytes));
            ini.setValue(kSection, kUser, userName() + u'@' + computerName());
            return true;
        });
    } catch (const data::DataError& error) {
        reportLogError(QStringLiteral("Varmuuskopion paikkaa ei voitu merkitä muistiin: ") +
                       error.finnish());
    }
}

}  // namespace

QString backupProblem(const QString& companyName) {
    const std::optional<Alias> alias = findAlias(companyName);
    if (!alias)
        return QStringLiteral("Yritystä ei löydy: ") + companyName;
    if (isEmbedded(*alias))
        return {};
    return QStringLiteral(
               "Yrityksen \"%1\" tiedot ovat tietokantapalvelimella. Niiden varmuuskopiot otetaan "
               "ja palautetaan palvelimen omilla välineillä, ei tällä ohjelmalla.")
        .arg(alias->name);
}

QString backupFileName(const QString& companyName, const QDateTime& when) {
    return asFileName(companyName) + u' ' + when.toString(kNameFormat) + kSuffix;
}

std::optional<Backup> makeBackup(const QString& companyName, const QString& file,
                                 const BackupProgress& progress) {
    const QString folder = folderOf(companyName);
    Backup backup{QFileInfo(file).absoluteFilePath(), data::Clock::now(), 0};
    const QString target = QFileInfo(backup.file).absolutePath();
    // not created: a missing folder may belong to a drive that is not mounted
    if (!QFileInfo(target).isDir())
        throw data::DataError(data::ErrorKind::Io, target,
                              QStringLiteral("there is no such folder"))
            .inFinnish(QStringLiteral("kansiota ei ole"));
    if (!engines::backupEmbedded(folder, backup.file, copyProgress(progress),
                                 engines::CopyCheck::Records))
        return std::nullopt;
    backup.bytes = QFileInfo(backup.file).size();
    remember(companyName, backup);
    return backup;
}

std::optional<Backup> lastBackup(const QString& companyName) {
    const QString note = noteFile(companyName);
    if (note.isEmpty() || !QFileInfo::exists(note))
        return std::nullopt;
    try {
        const platform::IniFile ini = platform::IniFile::read(note);
        Backup backup;
        backup.file = QDir::fromNativeSeparators(ini.value(kSection, kFile).value_or(QString()));
        backup.when =
            QDateTime::fromString(ini.value(kSection, kWhen).value_or(QString()), kMomentFormat);
        backup.bytes = ini.value(kSection, kBytes).value_or(QString()).toLongLong();
        if (!backup.file.isEmpty() && backup.when.isValid())
            return backup;
    } catch (const data::DataError& error) {
        reportLogError(QStringLiteral("Viimeisintä varmuuskopiota ei tiedetä: ") + error.finnish());
    }
    return std::nullopt;
}

QString restoreBackup(const QString& companyName, const QString& file,
                      const BackupProgress& progress) {
    const QDir folder(folderOf(companyName));
    const QString stem = QFileInfo(engines::kEmbeddedFileName).completeBaseName();
    const QString name = backupFileName(stem, data::Clock::now());
    QString kept = folder.filePath(name);
    for (int number = 2; QFileInfo::exists(kept); ++number)
        kept = folder.filePath(QStringLiteral("%1 (%2)%3")
                                   .arg(QFileInfo(name).completeBaseName())
                                   .arg(number)
                                   .arg(kSuffix));
    if (!engines::restoreEmbedded(folder.path(), QFileInfo(file).absoluteFilePath(), kept,
                                  copyProgress(progress)))
        return {};
    return kept;
}

}  // namespace company
