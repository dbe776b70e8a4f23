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

QString keyOf(size_t index) {
    return QStringLiteral("maar%1").arg(index + 1);
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
    const QString programFolder = QCoreApplication::applicationDirPath();
    return (canWriteIn(programFolder) ? programFolder : platform::userSettingsFolder()) + u'/' +
           kFileName;
}

BatchList readBatchList(const QString& fileName) {
    const platform::IniFile ini = platform::IniFile::read(fileName);
    BatchList list;
    for (size_t i = 0; i < list.size(); ++i)
        list[i] = ini.value(kSection, keyOf(i)).value_or(QString());
    return list;
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
