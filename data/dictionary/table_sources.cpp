#include <QDir>
#include <QFile>

#include "data/dictionary/dictionary_source.h"
#include "data/dictionary/resources.h"
#include "data/error.h"

namespace data {

std::vector<TableSource> allTableSources() {
    initDictionaryResources();
    std::vector<TableSource> sources;
    const QDir folder(QStringLiteral(":/data/source"));
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            throw DataError(ErrorKind::Io, name, file.errorString());
        sources.push_back(parseTableSource(file.readAll(), name));
    }
    return sources;
}

}  // namespace data
