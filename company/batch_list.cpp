#include "company/batch_list.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include "data/error.h"
#include "platform/ini_change.h"
#include "platform/read_file.h"
#include "platform/user_settings.h"

namespace company {

namespace {

const QString kFileName = QStringLiteral("ALVMUUTOS.INI");
const QString kSection = QStringLiteral("ASETUKSET");
const QString kReportKey = QStringLiteral("raportti");
const QString kBackupKey = QStringLiteral("varmuuskopio");

QString keyOf(size_t index) {
    return QStringLiteral("maar%1").arg(index + 1);
}

QString listIn(const QString& folder) {
    return folder + u'/' + kFileName;
}

bool canWriteIn(const QString& folder) {
#ifdef Q_OS_WIN
    // On Windows the folder's attributes do not reflect its access list.
    QTemporaryFile probe(folder + QStringLiteral("/XXXXXX.tmp"));
    return probe.open();
#else
    return QFileInfo(folder).isWritable();
#endif
}

}  // namespace

QString AlvMuutosIniName() {
    const BatchListFolders folders = BatchListFolders::ofThisProgram();
    return listIn(folders.programIsWritable ? folders.program : folders.user);
}

BatchListFolders BatchListFolders::ofThisProgram() {
    const QString program = QCoreApplication::applicationDirPath();
    return {program, canWriteIn(program), platform::userSettingsFolder()};
}

QString batchListToRead(const BatchListFolders& folders) {
    const QString beside = listIn(folders.program);
    const QString own = listIn(folders.user);
    const bool useBeside =
        folders.programIsWritable || (!QFileInfo::exists(own) && QFileInfo::exists(beside));
    return useBeside ? beside : own;
}

BatchList readBatchList(const QString& fileName) {
    const platform::IniFile ini = platform::IniFile::read(fileName);
    BatchList list;
    for (size_t i = 0; i < list.size(); ++i)
        list[i] = ini.value(kSection, keyOf(i)).value_or(QString());
    return list;
}

BatchSettings readBatchSettings(const QString& fileName) {
    const platform::IniFile ini = platform::IniFile::read(fileName);
    const auto value = [&ini](const QString& key) {
        return ini.value(kSection, key).value_or(QString()).trimmed();
    };
    const auto refused = [&fileName](const QString& key, const QString& text,
                                     const QString& english, const QString& finnish) {
        return data::DataError(data::ErrorKind::BadValue, fileName,
                               QStringLiteral("%1=%2: %3").arg(key, text, english))
            .inFinnish(QStringLiteral("%1=%2: %3").arg(key, text, finnish));
    };
    BatchSettings settings;
    const QString report = value(kReportKey);
    if (!report.isEmpty() && report != u"0" && report != u"1")
        throw refused(kReportKey, report, QStringLiteral("has to be 0 or 1"),
                      QStringLiteral("arvon on oltava 0 tai 1"));
    settings.report = report == u"1";
    settings.backupFolder = value(kBackupKey);
    // a task of the system's scheduler starts in any folder
    if (!settings.backupFolder.isEmpty() && !QDir::isAbsolutePath(settings.backupFolder))
        throw refused(kBackupKey, settings.backupFolder, QStringLiteral("is no full path"),
                      QStringLiteral("kansion koko polku puuttuu"));
    return settings;
}

QString batchListText(const QString& fileName, const BatchList& list) {
    QStringList names;
    for (const QString& name : list) {
        if (!name.isEmpty())
            names += name;
    }
    if (!names.isEmpty())
        return QStringLiteral("Eräajon luettelo \"%1\": ").arg(fileName) +
               names.join(QStringLiteral("; "));
    QString reason = QStringLiteral("osassa [%1] ei ole yhtään määrittelyä").arg(kSection);
    if (!QFileInfo::exists(fileName))
        reason = QStringLiteral("tiedostoa ei ole");
    else if (!platform::IniFile::read(fileName).hasSection(kSection))
        reason = QStringLiteral("osaa [%1] ei ole").arg(kSection);
    return QStringLiteral("Eräajon luettelo \"%1\" on tyhjä: %2. Mitään ei ajeta.")
        .arg(fileName, reason);
}

void writeBatchList(const QString& fileName, const BatchList& list) {
    const QString folder = QFileInfo(fileName).absolutePath();
    if (!QDir().mkpath(folder))  // the user's settings folder may be missing
        throw platform::folderCannotBeMade(folder);
    platform::changeIniFile(fileName, [&list](platform::IniFile& ini) {
        for (size_t i = 0; i < list.size(); ++i)
            ini.setValue(kSection, keyOf(i), list[i]);
        return true;
    });
}

}  // namespace company
