#include "company/private_copy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "company/aliases.h"
#include "company/shops_settings.h"
#include "company/unfinished_note.h"
#include "data/error.h"
#include "engines/embedded/embedded_database.h"
#include "engines/shops/shops_database.h"

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

/// The current company, of the shops' engine.
std::unique_ptr<data::Database> openShops() {
    const std::optional<Alias> alias = findAlias(currentCompany().name);
    if (!alias)
        throw data::DataError(data::ErrorKind::NoConnection, currentCompany().name,
                              QStringLiteral("no company of this name is registered"))
            .inFinnish(QStringLiteral("sen nimistä yritystä ei ole luettelossa"));
    return engines::shops::openShopsDatabase(shopsSettings(*alias));
}

using Tables = std::vector<std::unique_ptr<data::TableFile>>;

/// Those of the tables that the company has.
Tables openTables(data::Database& database, const QStringList& names) {
    Tables tables;
    for (const QString& name : names) {
        try {
            tables.push_back(database.openTable(name));
        } catch (const data::DataError& error) {
            if (error.kind() != data::ErrorKind::NoSuchTable)
                throw;
        }
    }
    return tables;
}

bool copyEmbedded(const QString& target, const CopyProgress& progress) {
    return engines::copyEmbedded(
        currentCompany().dataFolder, target, [&progress](int done, int total) {
            return progress(QStringLiteral("Kopioidaan tietokantaa"), done, total);
        });
}

bool copyShops(const QString& target, const QStringList& names, const CopyProgress& progress) {
    const std::unique_ptr<data::Database> database = openShops();
    const bool whole = engines::createEmbeddedCopy(
        target, openTables(*database, names),
        [&progress](const QString& table, qint64 done, qint64 total) {
            return progress(QStringLiteral("Kopioidaan taulua ") + table, done, total);
        });
    if (!whole)
        return false;
    const QString journal =
        engines::shops::copyShopsJournal(currentCompany().dataFolder, *database, target);
    if (!journal.isEmpty())
        engines::importJournal(target, journal);
    return true;
}

}  // namespace

qint64 PrivateCopy::size(const QStringList& tables) {
    if (isEmbedded())
        return engines::embeddedSize(currentCompany().dataFolder);
    constexpr qint64 kWithKeys = 2;  // a copy holds each key's values once more
    qint64 bytes = 0;
    const std::unique_ptr<data::Database> database = openShops();
    for (const auto& table : openTables(*database, tables))
        bytes += table->recordCount() * table->layout().recordLength() * kWithKeys;
    return bytes;
}

PrivateCopy::PrivateCopy(const QString& folder)
    : m_folder(folder), m_company(currentCompany()), m_converted(!isEmbedded()) {
    m_company.dataFolder = m_folder.path();
    m_company.ownerName.clear();  // of the shops' engine's record files
}

std::unique_ptr<PrivateCopy> PrivateCopy::make(const QString& folder, const QStringList& tables,
                                               const CopyProgress& progress) {
    std::unique_ptr<PrivateCopy> copy(new PrivateCopy(folder));
    const QString& target = copy->m_company.dataFolder;
    if (!(copy->m_converted ? copyShops(target, tables, progress) : copyEmbedded(target, progress)))
        return nullptr;
    copySettings(target);
    return copy;
}

std::unique_ptr<data::Database> PrivateCopy::open() const {
    return engines::openEmbedded(m_company.name, m_company.dataFolder);
}

bool runGoesOn() {
    const QString& folder = currentCompany().dataFolder;
    return isEmbedded() ? engines::runGoesOnInEmbedded(folder)
                        : engines::shops::runGoesOnInShops(folder);
}

}  // namespace company
