#include "company/private_copy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "company/aliases.h"
#include "company/unfinished_note.h"
#include "data/error.h"
#include "engines/embedded/embedded_database.h"

namespace company {

namespace {

const QString kDefinitions = QStringLiteral("MAARITYS");

void copyFile(const QString& from, const QString& to) {
    QFile file(from);
    if (!file.copy(to))
        throw data::DataError(data::ErrorKind::Io, from, file.errorString());
}

/// What a run reads besides the database.
void copySettings(const QString& target) {
    const QString note = unfinishedNoteName();
    if (QFileInfo::exists(note))
        copyFile(note, QDir(target).filePath(QFileInfo(note).fileName()));
    const QDir definitions(dataFolderFile(kDefinitions));
    const QStringList names = definitions.entryList(QDir::Files | QDir::Hidden);
    if (names.isEmpty())
        return;
    const QDir copies(QDir(target).filePath(kDefinitions));
    QDir().mkpath(copies.path());
    for (const QString& name : names)
        copyFile(definitions.filePath(name), copies.filePath(name));
}

bool isEmbedded() {
    const QString& folder = currentCompany().dataFolder;
    return !folder.isEmpty() && engines::hasEmbeddedDatabase(folder);
}

}  // namespace

qint64 PrivateCopy::size(const QStringList& /*tables*/) {
    return engines::embeddedSize(currentCompany().dataFolder);
}

PrivateCopy::PrivateCopy(const QString& folder) : m_folder(folder), m_company(currentCompany()) {
    m_company.dataFolder = m_folder.path();
    m_company.ownerName.clear();  // of the shops' engine's record files
}

std::unique_ptr<PrivateCopy> PrivateCopy::make(const QString& folder, const QStringList& /*tables*/,
                                               const CopyProgress& progress) {
    std::unique_ptr<PrivateCopy> copy(new PrivateCopy(folder));
    const QString& target = copy->m_company.dataFolder;
    const bool whole = engines::copyEmbedded(
        currentCompany().dataFolder, target, [&progress](int done, int total) {
            return progress(QStringLiteral("Kopioidaan tietokantaa"), done, total);
        });
    if (!whole)
        return nullptr;
    copySettings(target);
    return copy;
}

std::unique_ptr<data::Database> PrivateCopy::open() const {
    return engines::openEmbedded(m_company.name, m_company.dataFolder);
}

bool runGoesOn() {
    return isEmbedded() && engines::runGoesOnInEmbedded(currentCompany().dataFolder);
}

}  // namespace company
