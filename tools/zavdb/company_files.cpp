#include "tools/zavdb/company_files.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include "tools/zavdb/command.h"

namespace tools {

namespace {

const QString kDefinitionsFolder = QStringLiteral("MAARITYS");
const QString kIniFiles = QStringLiteral("*.ini");  // any case

// Larger files are not settings files.
constexpr qint64 kLargestFile = qint64{16} * 1024 * 1024;

std::optional<QByteArray> contents(const QString& fileName, QString& why) {
    QFile file(fileName);
    if (file.size() > kLargestFile) {
        why = QStringLiteral("too large for a settings file");
        return std::nullopt;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
        return std::nullopt;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) {
        why = file.errorString();
        return std::nullopt;
    }
    return bytes;
}

void copyFile(const QString& from, const QString& to, QStringList& notes) {
    QString why;
    const std::optional<QByteArray> bytes = contents(from, why);
    if (!bytes) {
        notes.append(QStringLiteral("%1 cannot be read and was left out: %2").arg(from, why));
        return;
    }
    if (QFile::exists(to)) {
        if (contents(to, why) != bytes)
            notes.append(QStringLiteral("%1 was there already and stays as it is").arg(to));
        return;
    }
    QSaveFile file(to);
    if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() || !file.commit())
        throw CommandError(QStringLiteral("%1 cannot be written: %2").arg(to, file.errorString()));
}

void copyFolder(const QString& source, const QString& target, QStringList& notes) {
    const QStringList names = QDir(source).entryList({kIniFiles}, QDir::Files, QDir::Name);
    if (names.isEmpty())
        return;
    if (!QDir().mkpath(target))
        throw CommandError(QStringLiteral("The folder %1 cannot be made.").arg(target));
    for (const QString& name : names)
        copyFile(QDir(source).filePath(name), QDir(target).filePath(name), notes);
}

}  // namespace

void copyCompanyFiles(const QString& source, const QString& target, QStringList& notes) {
    if (source.isEmpty())
        return;  // a company of the shops' engine without a folder
    copyFolder(source, target, notes);
    const QStringList folders = QDir(source).entryList({kDefinitionsFolder}, QDir::Dirs);
    for (const QString& folder : folders)
        copyFolder(QDir(source).filePath(folder), QDir(target).filePath(folder), notes);
}

}  // namespace tools
