#include "platform/dictionary_module.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "data/dictionary/tbl_res_reader.h"
#include "platform/user_settings.h"

namespace platform {

QString dictionaryModuleName() {
    for (const QString& folder : {QCoreApplication::applicationDirPath(), userSettingsFolder()}) {
        QString name = folder + QStringLiteral("/SANAKIRJA.DAT");
        if (QFileInfo::exists(name))
            return name;
    }
    return {};
}

void loadDictionaryModule() {
    const QString name = dictionaryModuleName();
    if (!name.isEmpty())
        data::TTblResReader::setModuleFile(name);
}

}  // namespace platform
