#include "framework/ui/finnish_texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace framework {

void useFinnishTexts() {
    auto* texts = new QTranslator(QCoreApplication::instance());
    for (const QString& folder :
         {QCoreApplication::applicationDirPath() + QStringLiteral("/translations"),
          QLibraryInfo::path(QLibraryInfo::TranslationsPath)}) {
        if (texts->load(QStringLiteral("qtbase_fi"), folder)) {
            QCoreApplication::installTranslator(texts);
            return;
        }
    }
}

}  // namespace framework
