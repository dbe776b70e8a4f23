#include "vatchange/journal/undo_tables.h"

#include <algorithm>
#include <array>

#include "data/journal/entry_fields.h"
#include "data/record/record_codec.h"
#include "vatchange/journal/ignored_changes.h"
#include "vatchange/journal/run_refused.h"

namespace vatchange {

namespace {

constexpr int kSameKey = 100;
constexpr std::array<const char*, 2> kPrintFields{"TULPVM", "TULAIKA"};

bool same(const QString& name, const QString& other) {
    return name.compare(other, Qt::CaseInsensitive) == 0;
}

RunRefused described(qint64 run, const QString& table) {
    return {QStringLiteral("Run %1 changed table %2, which the catalogue has described otherwise "
                           "since: its changes can no longer be read.")
                .arg(run)
                .arg(table),
            QStringLiteral("Ajo %1 muutti taulua %2, jonka kuvaus tietokannassa on sen jälkeen "
                           "muuttunut: ajon muutoksia ei voi enää lukea.")
                .arg(run)
                .arg(table)};
}

std::unique_ptr<data::TableFile> openDescribed(data::Database& database, qint64 run,
                                               const data::JournalTable& stored) {
    std::unique_ptr<data::TableFile> file;
    try {
        file = database.openTable(stored.name);
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::NoSuchTable)
            throw;
        throw described(run, stored.name);
    }
    if (!data::describes(stored, file->layout(), file->keys()))
        throw described(run, stored.name);
    return file;
}

}  // namespace

QString UndoTable::key(const QByteArray& keyBytes) const {
    data::JournalEntry entry;
    entry.key = keyBytes;
    return data::keyText(layout(), file->keys(), entry);
}

data::Value UndoTable::keyValue(const QByteArray& keyBytes, int position) const {
    qsizetype at = 0;
    const auto& segments = file->keys().front().segments;
    for (int i = 0; i < position; ++i)
        at += layout().field(segments[static_cast<size_t>(i)].fieldIndex).storedLength;
    const data::TFieldCacheItem& field =
        layout().field(segments[static_cast<size_t>(position)].fieldIndex);
    QByteArray record(layout().recordLength(), '\0');
    const QByteArray bytes = keyBytes.mid(at, field.storedLength);
    record.replace(field.offset, bytes.size(), bytes);
    return data::readValue(field, reinterpret_cast<const uchar*>(record.constData()));
}

data::KeyValues UndoTable::keyValues(const QByteArray& keyBytes) const {
    data::KeyValues values;
    for (size_t i = 0; i < file->keys().front().segments.size(); ++i)
        values.push_back(keyValue(keyBytes, static_cast<int>(i)));
    return values;
}

bool UndoTable::isLabel() const {
    return same(stored.name, kLabelTable);
}

bool UndoTable::isPrintedLabel(const QByteArray& record) const {
    if (!isLabel())
        return false;
    const QByteArray empty(record.size(), '\0');
    return std::any_of(kPrintFields.begin(), kPrintFields.end(), [&](const char* name) {
        const int field = layout().indexOf(QLatin1String(name));
        return field >= 0 &&
               fieldText(layout(), field, record) != fieldText(layout(), field, empty);
    });
}

bool UndoTable::isRunMark(const QByteArray& keyBytes) const {
    return settings && vatchange::isRunMark(stored.name, key(keyBytes));
}

bool UndoTable::holds(const NetChange& change, const QByteArray& record) const {
    return std::all_of(change.changes.begin(), change.changes.end(),
                       [&record](const data::ByteChange& part) {
                           return part.offset + part.after.size() <= record.size() &&
                                  record.mid(part.offset, part.after.size()) == part.after;
                       });
}

std::optional<data::StoredRecord> UndoTable::find(const NetChange& change) const {
    std::optional<data::StoredRecord> there;
    if (change.record > 0)
        there = file->get(change.record);
    if (there && m_difference->key(there->bytes) == change.key)
        return there;
    if (!file->keys().empty()) {
        for (data::StoredRecord& record :
             file->seek(0, data::SeekOp::Equal, keyValues(change.key), kSameKey)) {
            if (hasUniqueKey() || holds(change, record.bytes))
                return std::move(record);
        }
    }
    // its key was changed, or its address was given to another record
    if (there && !holds(change, there->bytes))
        there.reset();
    return there;
}

UndoTables::UndoTables(data::Database& database, data::RunJournal& journal, qint64 run,
                       const QString& only) {
    for (const data::JournalTable& stored : journal.tables(run)) {
        std::optional<UndoTable>& table = m_tables.emplace_back();
        if (!only.isEmpty() && !same(stored.name, only))
            continue;
        table.emplace();
        table->stored = stored;
        table->file = openDescribed(database, run, stored);
        table->places = fieldPlaces(table->layout());
        table->m_difference =
            std::make_unique<data::RecordDifference>(table->layout(), table->file->keys());
        for (int i = 0; i < table->layout().fieldCount(); ++i) {
            if (isChangeDate(stored.name, table->layout().field(i).name))
                table->changeDates.push_back(i);
        }
        table->consumed = isConsumedTable(stored.name);
        table->settings = same(stored.name, QStringLiteral("INI"));
        for (const OrderTables* orders : {&kSalesOrderTables, &kPurchaseOrderTables}) {
            if (same(stored.name, orders->header) || same(stored.name, orders->rows))
                table->orders = orders;
        }
    }
}

UndoTable* UndoTables::at(int table) {
    if (table < 0 || static_cast<size_t>(table) >= m_tables.size())
        throw data::DataError(data::ErrorKind::Damaged, QStringLiteral("run journal"),
                              QStringLiteral("an entry names an unknown table"))
            .inFinnish(QStringLiteral("ajopäiväkirjan merkintä nimeää tuntemattoman taulun"));
    std::optional<UndoTable>& found = m_tables[static_cast<size_t>(table)];
    return found ? &*found : nullptr;
}

}  // namespace vatchange
