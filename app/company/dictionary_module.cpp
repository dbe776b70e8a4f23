#include "app/company/dictionary_module.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "app/company/user_settings.h"
#include "data/dictionary/tbl_res_reader.h"

namespace company {

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

}  // namespace company
