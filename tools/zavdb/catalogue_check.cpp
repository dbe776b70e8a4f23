#include "tools/zavdb/catalogue_check.h"

#include <QHash>
#include <algorithm>
#include <functional>
#include <optional>

#include "data/record/record_codec.h"
#include "tools/zavdb/command.h"

namespace tools {

namespace {

const QString kFileTable = QStringLiteral("X$File");
const QString kFieldTable = QStringLiteral("X$Field");
const QString kIndexTable = QStringLiteral("X$Index");

constexpr int kBatch = 200;

/// The fields of one record by name, as text.
using Row = std::function<QString(const char* field)>;

void forEachRow(data::TableFile& records, const std::function<void(const Row&)>& use) {
    const data::RecordLayout& layout = records.layout();
    auto batch = records.fromEnd(0, data::Direction::Forward, kBatch);
    while (!batch.empty()) {
        for (const data::StoredRecord& record : batch) {
            use([&](const char* name) {
                const int index = layout.indexOf(QString::fromLatin1(name));
                if (index < 0)
                    throw CommandError(QStringLiteral("Table %1 has no field %2.")
                                           .arg(layout.tableName(), QLatin1String(name)));
                const data::TFieldCacheItem& field = layout.field(index);
                return data::valueToText(
                    field, data::readValue(
                               field, reinterpret_cast<const uchar*>(record.bytes.constData())));
            });
        }
        batch = records.next(0, batch.back(), data::Direction::Forward, kBatch);
    }
}

}  // namespace

bool isCatalogueTable(const QString& table) {
    return QStringList{kFileTable, kFieldTable, kIndexTable}.contains(table, Qt::CaseInsensitive);
}

CatalogueReader::CatalogueReader(data::Database& database)
    : m_files(openTable(database, kFileTable)),
      m_fields(openTable(database, kFieldTable)),
      m_indexes(openTable(database, kIndexTable)) {}

Catalogue CatalogueReader::read() {
    Catalogue catalogue;
    QHash<QString, QString> tableOfId;
    forEachRow(*m_files, [&](const Row& row) {
        const QString table = row("Xf$Name").toUpper();
        catalogue[table].append(QStringLiteral("table"));  // a duplicate name shows up
        tableOfId.insert(row("Xf$Id"), table);
    });
    const auto tableOf = [&](const QString& id) {
        return tableOfId.value(id, QStringLiteral("number ") + id);
    };
    QHash<QString, QString> fieldOfId;
    forEachRow(*m_fields, [&](const Row& row) {
        const QString name = row("Xe$Name").toUpper();
        fieldOfId.insert(row("Xe$Id"), name);
        // in order of key 0, the field number: each table's fields come in their order
        catalogue[tableOf(row("Xe$File"))].append(
            QStringList{QStringLiteral("field"), name, row("Xe$DataType"), row("Xe$Offset"),
                        row("Xe$Size"), row("Xe$Dec"), row("Xe$Flags")}
                .join(u' '));
    });
    forEachRow(*m_indexes, [&](const Row& row) {
        catalogue[tableOf(row("Xi$File"))].append(
            QStringList{QStringLiteral("key"), row("Xi$Number"), row("Xi$Part"),
                        fieldOfId.value(row("Xi$Field"), QStringLiteral("?")), row("Xi$Flags")}
                .join(u' '));
    });
    return catalogue;
}

void requireSameTables(const Catalogue& before, const Catalogue& after) {
    for (const Catalogue& side : {before, after})
        for (auto it = side.begin(); it != side.end(); ++it)
            if (before.value(it.key()) != after.value(it.key()))
                throw CommandError(
                    QStringLiteral("Nothing was imported: the catalogue would no longer describe "
                                   "table %1 as it is stored.")
                        .arg(it.key()));
}

void changeTable(data::Database& database, const data::TableFile& table,
                 const std::function<void()>& change) {
    std::optional<CatalogueReader> catalogue;
    Catalogue before;
    if (isCatalogueTable(table.layout().tableName())) {
        catalogue.emplace(database);
        before = catalogue->read();
    }
    database.inTransaction([&] {
        change();
        if (catalogue)
            requireSameTables(before, catalogue->read());
    });
}

}  // namespace tools
