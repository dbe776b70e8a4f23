#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

#include "data/dictionary/dictionary_source.h"
#include "data/error.h"

// dictc OUT.bin SOURCE.dict: compiles a table source into its binary block during the build.

namespace {

QByteArray readAll(const QString& name) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw data::DataError(data::ErrorKind::Io, name, file.errorString());
    return file.readAll();
}

void writeAll(const QString& name, const QByteArray& bytes) {
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw data::DataError(data::ErrorKind::Io, name, file.errorString());
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream errors(stderr);
    if (arguments.size() != 3) {
        errors << "usage: dictc OUT.bin SOURCE.dict\n";
        return 2;
    }
    try {
        const data::TableSource table =
            data::parseTableSource(readAll(arguments[2]), QFileInfo(arguments[2]).fileName());
        writeAll(arguments[1], data::compileBlock(table.name, table.fields));
    } catch (const data::DataError& error) {
        errors << "dictc: " << error.english() << '\n';
        return 1;
    }
    return 0;
}
