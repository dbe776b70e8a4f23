#include "framework/ui/finnish_texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace framework {

namespace {

// What Qt's translation lacks, and words that this program uses in another form.
struct Text {
    const char* context;
    const char* english;
    const char* finnish;
};
constexpr Text kTexts[] = {
    {"QAbstractFileIconProvider", "Folder", "Kansio"},
    {"QAbstractFileIconProvider", "File Folder", "Kansio"},
    {"QAbstractFileIconProvider", "File", "Tiedosto"},
    {"QAbstractFileIconProvider", "%1 File", "%1-tiedosto"},
    {"QAbstractFileIconProvider", "Drive", "Asema"},
    {"QAbstractFileIconProvider", "Alias", "Pikakuvake"},
    {"QAbstractFileIconProvider", "Shortcut", "Pikakuvake"},
    {"QAbstractFileIconProvider", "Unknown", "Tuntematon"},
    {"QFileDialog", "Computer", "Tietokone"},
    {"QFileDialog", "My Computer", "Tietokone"},
    {"QFileSystemModel", "Computer", "Tietokone"},
    {"QFileDialog", "&Save", "&Talleta"},
    {"QFileDialog", "Save As", "Talleta nimellä"},
    {"QPlatformTheme", "Save", "Talleta"},
    {"QPlatformTheme", "&Save", "&Talleta"},
    {"QPlatformTheme", "Cancel", "Peruuta"},
    {"QPlatformTheme", "&Cancel", "&Peruuta"},
};

class OwnTexts : public QTranslator {
  public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override {
        for (const Text& text : kTexts)
            if (qstrcmp(context, text.context) == 0 && qstrcmp(source, text.english) == 0)
                return QString::fromUtf8(text.finnish);
        return {};  // the next translator
    }
};

}  // namespace

void useFinnishTexts() {
    auto* texts = new QTranslator(QCoreApplication::instance());
    for (const QString& folder :
         {QCoreApplication::applicationDirPath() + QStringLiteral("/translations"),
          QLibraryInfo::path(QLibraryInfo::TranslationsPath)}) {
        if (texts->load(QStringLiteral("qtbase_fi"), folder)) {
            QCoreApplication::installTranslator(texts);
            // asked before the one installed earlier
            QCoreApplication::installTranslator(new OwnTexts(QCoreApplication::instance()));
            return;
        }
    }
}

}  // namespace framework
