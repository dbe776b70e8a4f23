#include "tools/zavdb/copy_target.h"

#include <QDir>
#include <QFile>
#include <algorithm>

#include "data/engine/table_source.h"
#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "tools/zavdb/command.h"

namespace tools {

namespace {

constexpr int kAll = 1 << 30;

QString buildFolder(const QString& work) {
    return QDir(work).filePath(QStringLiteral("new"));
}
QString trialFolder(const QString& work) {
    return QDir(work).filePath(QStringLiteral("trial"));
}
QString databaseIn(const QString& folder) {
    return QDir(folder).filePath(engines::kEmbeddedFileName);
}

void moveDatabase(const QString& from, const QString& to) {
    QFile file(from);
    if (!file.rename(to))
        throw CommandError(
            QStringLiteral("%1 cannot be moved to %2: %3").arg(from, to, file.errorString()));
}

bool sameField(const data::TFieldCacheItem& a, const data::TFieldCacheItem& b) {
    return a.name == b.name && a.offset == b.offset && a.storedLength == b.storedLength &&
           a.storage == b.storage && a.mask == b.mask;
}

bool sameSegment(const data::KeySegment& a, const data::KeySegment& b) {
    return a.fieldIndex == b.fieldIndex && a.ignoreCase == b.ignoreCase &&
           a.descending == b.descending;
}

bool sameKey(const data::KeyDef& a, const data::KeyDef& b) {
    return a.number == b.number && a.unique == b.unique &&
           std::equal(a.segments.begin(), a.segments.end(), b.segments.begin(), b.segments.end(),
                      sameSegment);
}

bool sameShape(const data::TableFile& a, const data::TableFile& b) {
    const std::vector<data::TFieldCacheItem>& first = a.layout().fields();
    const std::vector<data::TFieldCacheItem>& second = b.layout().fields();
    return a.layout().recordLength() == b.layout().recordLength() &&
           std::equal(first.begin(), first.end(), second.begin(), second.end(), sameField) &&
           std::equal(a.keys().begin(), a.keys().end(), b.keys().begin(), b.keys().end(), sameKey);
}

/// Stores the source's catalogue rows. @return whether they describe the same tables there.
bool acceptsCatalogue(const OpenTables& source, const QString& folder) {
    const CopiedTables copied(source);
    try {
        {
            const std::unique_ptr<data::Database> database =
                engines::openEmbedded(QString(), folder);
            for (const std::unique_ptr<data::TableFile>& table : source) {
                if (!isCatalogueTable(table->layout().tableName()))
                    continue;
                const auto target = database->openTable(table->layout().tableName());
                database->inTransaction([&] { removeAll(*target); });
                copyTable(*table, *database, *target, copied.belongs(*table), [](qint64) {});
            }
        }
        const std::unique_ptr<data::Database> database = engines::openEmbedded(QString(), folder);
        return static_cast<size_t>(database->tableNames().size()) == source.size() &&
               std::all_of(source.begin(), source.end(), [&](const auto& table) {
                   return sameShape(*table, *database->openTable(table->layout().tableName()));
               });
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::Damaged &&
            error.kind() != data::ErrorKind::NoSuchTable)
            throw;
        return false;  // rows that this engine cannot read
    }
}

qint64 numberOf(const data::TableFile& table, const char* field, const QByteArray& record) {
    const int index = table.layout().indexOf(QLatin1String(field));
    if (index < 0)
        throw CommandError(QStringLiteral("Table %1 has no field %2.")
                               .arg(table.layout().tableName(), QLatin1String(field)));
    return data::readInteger(table.layout().field(index),
                             reinterpret_cast<const uchar*>(record.constData()));
}

bool isNamed(const data::TableFile& table, const char* name) {
    return table.layout().tableName().compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

}  // namespace

CopiedTables::CopiedTables(const OpenTables& tables) {
    data::TableFile* files = nullptr;
    for (const std::unique_ptr<data::TableFile>& table : tables) {
        m_names.insert(table->layout().tableName().toCaseFolded());
        if (isNamed(*table, "X$File"))
            files = table.get();
    }
    if (files == nullptr)
        return;
    const int name = files->layout().indexOf(QStringLiteral("Xf$Name"));
    if (name < 0)
        throw CommandError(QStringLiteral("Table X$File has no field Xf$Name."));
    files->visitStored(std::nullopt, kAll, [&](data::RecordId, const QByteArray& record) {
        const QString table = data::readText(files->layout().field(name),
                                             reinterpret_cast<const uchar*>(record.constData()));
        if (m_names.contains(table.toCaseFolded()))
            m_numbers.insert(numberOf(*files, "Xf$Id", record));
        return true;
    });
}

BelongsToCopy CopiedTables::belongs(const data::TableFile& table) const {
    const char* field = isNamed(table, "X$File")    ? "Xf$Id"
                        : isNamed(table, "X$Field") ? "Xe$File"
                        : isNamed(table, "X$Index") ? "Xi$File"
                                                    : nullptr;
    if (field == nullptr)
        return {};
    return [this, &table, field](const QByteArray& record) {
        return m_numbers.contains(numberOf(table, field, record));
    };
}

bool makeCopyTarget(const OpenTables& source, const QString& work) {
    for (const QString& folder : {buildFolder(work), trialFolder(work)})
        QDir(folder).removeRecursively();
    std::vector<data::TableSource> tables;
    for (const std::unique_ptr<data::TableFile>& table : source)
        tables.push_back(data::tableSourceOf(*table));
    engines::createEmbedded(buildFolder(work), tables);
    if (!QDir().mkpath(trialFolder(work)) ||
        !QFile::copy(databaseIn(buildFolder(work)), databaseIn(trialFolder(work))))
        throw CommandError(QStringLiteral("The folder %1 cannot be written.").arg(work));
    if (acceptsCatalogue(source, trialFolder(work)))
        return true;
    QDir(trialFolder(work)).removeRecursively();
    return false;
}

void takeCopyTarget(const QString& work) {
    const QString trial = databaseIn(trialFolder(work));
    moveDatabase(QFile::exists(trial) ? trial : databaseIn(buildFolder(work)), databaseIn(work));
}

}  // namespace tools
