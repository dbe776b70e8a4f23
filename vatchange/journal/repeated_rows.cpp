#include "vatchange/journal/repeated_rows.h"

#include <QSet>
#include <algorithm>
#include <map>

#include "data/journal/entry_codec.h"
#include "data/journal/entry_fields.h"
#include "data/record/record_codec.h"
#include "data/sql/uni_query.h"
#include "vatchange/journal/history.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/rules/dependent_statements.h"
#include "vatchange/rules/selection.h"

namespace vatchange {

namespace {

/// Digits to which key columns agree: drivers return singles with no more.
constexpr int kKeyDigits = 6;

/// A price table that a definition multiplies: the columns that its UPDATE identifies rows by.
struct MultipliedTable {
    QString name;
    QStringList keyColumns;
    bool ChangeDefinition::*chosen;
    QString (*query)(const QString& condition, const ChangeDefinition& definition);
};

const std::vector<MultipliedTable>& multipliedTables() {
    static const std::vector<MultipliedTable> kTables = {
        {QStringLiteral("ASALE"),
         {QStringLiteral("AsiakasNumero"), QStringLiteral("tuote"), QStringLiteral("AsikasTyyppi"),
          QStringLiteral("maara")},
         &ChangeDefinition::customerPriceLists,
         customerPriceQuery},
        {QStringLiteral("KAMPPANJA"),
         {QStringLiteral("Tuote"), QStringLiteral("Rivinro")},
         &ChangeDefinition::campaigns,
         campaignQuery},
        {QStringLiteral("VAKIOLASKUTUS"),
         {QStringLiteral("id")},
         &ChangeDefinition::recurringInvoicing,
         [](const QString& condition, const ChangeDefinition&) {
             return recurringInvoiceQuery(condition);
         }},
        {QStringLiteral("MAARAALE"),
         {QStringLiteral("numero")},
         &ChangeDefinition::quantityDiscounts,
         quantityDiscountQuery},
    };
    return kTables;
}

void addToKey(QString& key, const data::Value& value) {
    QString part = value.typeId() == QMetaType::Double
                       ? QString::number(value.toDouble() + 0.0, 'g', kKeyDigits)  // -0 is 0
                       : value.toString();
    while (part.endsWith(u' '))
        part.chop(1);
    key += part.toCaseFolded() + u'\n';
}

/// Keys of the rows that a definition would change now.
QSet<QString> selectedKeys(data::Database& database, const MultipliedTable& table,
                           const ChangeDefinition& definition) {
    data::TUniQuery rows(&database);
    rows.sql().add(table.query(selectionCondition(definition), definition));
    rows.open();
    std::vector<const data::TQueryField*> columns;
    for (const QString& name : table.keyColumns)
        columns.push_back(&rows.fieldByName(name));
    QSet<QString> keys;
    for (; !rows.eof(); rows.next()) {
        QString key;
        for (const data::TQueryField* column : columns)
            addToKey(key, column->value());
        keys += key;
    }
    return keys;
}

using RecordIds = std::vector<data::RecordId>;

/// The records that a run changed, by table in upper case.
std::map<QString, RecordIds> recordsOf(data::RunJournal& journal, qint64 run) {
    const std::vector<data::JournalTable> tables = journal.tables(run);
    std::map<QString, RecordIds> records;
    for (const MultipliedTable& table : multipliedTables()) {
        const bool changed = std::any_of(
            tables.begin(), tables.end(), [&table](const data::JournalTable& journaled) {
                return journaled.name.compare(table.name, Qt::CaseInsensitive) == 0;
            });
        if (changed)
            records[table.name] = {};
    }
    if (records.empty())
        return records;
    journal.visit(run, data::Direction::Forward, [&](const data::JournalEntry& entry) {
        if (entry.isMark)
            return true;
        const auto known = records.find(tables.at(static_cast<size_t>(entry.table)).name.toUpper());
        if (known != records.end())
            known->second.push_back(entry.record);
        return true;
    });
    for (auto& [name, ids] : records) {
        std::sort(ids.begin(), ids.end());
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    }
    return records;
}

/// Those of the records that are still there with one of the keys.
RepeatedRows rowsWithKeys(data::Database& database, const MultipliedTable& table,
                          const RecordIds& records, const QSet<QString>& keys) {
    const auto file = database.openTable(table.name);
    const data::RecordLayout& layout = file->layout();
    const data::RecordDifference difference(layout, file->keys());
    RepeatedRows repeated{table.name, {}, {}};
    for (const data::RecordId id : records) {
        const std::optional<data::StoredRecord> record = file->get(id);
        if (!record)
            continue;
        QString key;
        for (const QString& column : table.keyColumns)
            addToKey(key, data::readValue(layout.field(layout.indexOf(column)),
                                          reinterpret_cast<const uchar*>(record->bytes.data())));
        if (!keys.contains(key))
            continue;
        repeated.records.push_back(id);
        if (repeated.keys.size() < RepeatedRows::kListed) {
            data::JournalEntry entry;
            entry.record = id;
            entry.key = difference.key(record->bytes);
            repeated.keys += data::keyText(layout, file->keys(), entry);
        }
    }
    return repeated;
}

}  // namespace

std::vector<RepeatedRows> repeatedRows(data::Database& database, qint64 run,
                                       const ChangeDefinition& definition) {
    data::RunJournal& journal = *database.journal();
    const std::optional<ChangeDefinition> earlier = definitionOfRun(journal, run);
    std::vector<RepeatedRows> repeated;
    if (!earlier || !definition.changesDependents())
        return repeated;
    const std::map<QString, RecordIds> changed = recordsOf(journal, run);
    for (const MultipliedTable& table : multipliedTables()) {
        const auto records = changed.find(table.name);
        if (!(definition.*table.chosen) || records == changed.end() || records->second.empty())
            continue;
        QSet<QString> keys = selectedKeys(database, table, *earlier);
        if (definition != *earlier && !keys.isEmpty())
            keys.intersect(selectedKeys(database, table, definition));
        RepeatedRows rows = rowsWithKeys(database, table, records->second, keys);
        if (!rows.records.empty())
            repeated.push_back(std::move(rows));
    }
    return repeated;
}

QString repeatedRowsText(const std::vector<RepeatedRows>& tables) {
    QStringList texts;
    for (const RepeatedRows& table : tables) {
        QString keys = table.keys.join(QStringLiteral("; "));
        if (table.keys.size() < static_cast<qsizetype>(table.records.size()))
            keys += QStringLiteral("; ...");
        texts += QStringLiteral("%1 %2 (%3)")
                     .arg(tableText(table.table))
                     .arg(table.records.size())
                     .arg(keys);
    }
    return texts.join(QStringLiteral(", "));
}

}  // namespace vatchange
